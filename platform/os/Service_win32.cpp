#include "os/Service.h"

#include "os/TextConversion.h"

#include <boost/asio/post.hpp>

#include <windows.h>

#include <cstdio>
#include <mutex>
#include <stdexcept>
#include <vector>

namespace platform::os {

namespace {

// The calling user's SID, from the process token; empty when it cannot be read.
std::vector<unsigned char> UserSid() {
    HANDLE token = nullptr;
    if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token)) {
        return {};
    }
    DWORD size = 0;
    ::GetTokenInformation(token, TokenUser, nullptr, 0, &size);
    std::vector<unsigned char> user(size);
    const bool read = size > 0 && ::GetTokenInformation(token, TokenUser, user.data(), size, &size);
    ::CloseHandle(token);
    if (!read) {
        return {};
    }
    const PSID sid = reinterpret_cast<TOKEN_USER*>(user.data())->User.Sid;
    std::vector<unsigned char> copy(::GetLengthSid(sid));
    ::CopySid(static_cast<DWORD>(copy.size()), copy.data(), sid);
    return copy;
}

// A security descriptor whose access list grants everything to the user and nothing to anyone
// else, and takes nothing from the folder. The buffers live as long as the object.
class UserOnlySecurity {
public:
    UserOnlySecurity() : sid_(UserSid()) {
        if (sid_.empty()) {
            throw std::runtime_error("cannot read the user's SID");
        }
        acl_.resize(sizeof(ACL) + sizeof(ACCESS_ALLOWED_ACE) + sid_.size());
        const auto acl = reinterpret_cast<PACL>(acl_.data());
        if (!::InitializeAcl(acl, static_cast<DWORD>(acl_.size()), ACL_REVISION) ||
            !::AddAccessAllowedAce(acl, ACL_REVISION, GENERIC_ALL, sid_.data()) ||
            !::InitializeSecurityDescriptor(&descriptor_, SECURITY_DESCRIPTOR_REVISION) ||
            !::SetSecurityDescriptorDacl(&descriptor_, TRUE, acl, FALSE) ||
            !::SetSecurityDescriptorControl(&descriptor_, SE_DACL_PROTECTED, SE_DACL_PROTECTED)) {
            throw std::runtime_error("cannot make an access list for the user");
        }
        attributes_.nLength = sizeof attributes_;
        attributes_.lpSecurityDescriptor = &descriptor_;
        attributes_.bInheritHandle = FALSE;
    }
    SECURITY_ATTRIBUTES* Attributes() { return &attributes_; }

private:
    std::vector<unsigned char> sid_;
    std::vector<unsigned char> acl_;
    SECURITY_DESCRIPTOR descriptor_{};
    SECURITY_ATTRIBUTES attributes_{};
};

} // namespace

void WritePrivateFile(const std::string& path, std::string_view contents) {
    const std::wstring target = Utf8ToWide(path);
    const std::wstring temporary = target + L".new";
    UserOnlySecurity security;
    const HANDLE file = ::CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, security.Attributes(),
                                      CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        throw std::runtime_error("cannot write " + path + ".new");
    }
    DWORD written = 0;
    const bool complete = ::WriteFile(file, contents.data(), static_cast<DWORD>(contents.size()),
                                      &written, nullptr) &&
                          written == contents.size();
    const bool closed = ::CloseHandle(file) != 0;
    if (!complete || !closed ||
        !::MoveFileExW(temporary.c_str(), target.c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        ::DeleteFileW(temporary.c_str());
        throw std::runtime_error("cannot write " + path);
    }
}

std::FILE* OpenForAppending(const std::string& path) {
    // Binary: lines end as on Linux, whatever reads them.
    return ::_wfopen(Utf8ToWide(path).c_str(), L"abN");
}

// The console's handler runs on a thread of its own: it reaches the one live StopRequests through
// `current`, under the lock, and posts the stop to that one's io_context.
namespace {

struct Listener {
    boost::asio::io_context& io;
    std::function<void()> stop;
};

std::mutex current_lock;
const Listener* current = nullptr;

BOOL WINAPI OnConsoleEvent(DWORD event) {
    {
        const std::lock_guard<std::mutex> lock(current_lock);
        if (current == nullptr) {
            return FALSE;
        }
        boost::asio::post(current->io, current->stop);
    }
    if (event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT) {
        // Returning would end the process now; main's return ends it once the data is closed.
        ::Sleep(INFINITE);
    }
    return TRUE;
}

} // namespace

struct StopRequests::State : Listener {};

StopRequests::StopRequests(boost::asio::io_context& io, std::function<void()> stop)
    : state_(std::make_unique<State>(State{{io, std::move(stop)}})) {
    {
        const std::lock_guard<std::mutex> lock(current_lock);
        current = state_.get();
    }
    ::SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

StopRequests::~StopRequests() {
    ::SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
    const std::lock_guard<std::mutex> lock(current_lock);
    current = nullptr;
}

} // namespace platform::os
