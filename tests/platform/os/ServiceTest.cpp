// What a serving program needs of its system: the endpoint file is this user's alone and replaced
// whole, and a stop request reaches the program's own thread.
#include "os/Service.h"
#include "os/Os.h"

#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#ifdef _WIN32
#include <aclapi.h>
#include <windows.h>
#endif

namespace {

namespace fs = std::filesystem;

// Whether nobody but this user may open the file. Windows: each entry of its access list allows
// this user's SID or the system's own account (which Wine adds to every file it describes); the
// user has one. POSIX: mode 0600.
bool UsersAlone(const fs::path& file) {
#ifdef _WIN32
    PACL acl = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (::GetNamedSecurityInfoW(file.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                                nullptr, &acl, nullptr, &descriptor) != ERROR_SUCCESS) {
        return false;
    }
    unsigned char user[256];
    unsigned char system[SECURITY_MAX_SID_SIZE];
    DWORD size = sizeof system;
    HANDLE token = nullptr;
    bool known = ::CreateWellKnownSid(WinLocalSystemSid, nullptr, system, &size) &&
                 ::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token) &&
                 ::GetTokenInformation(token, TokenUser, user, sizeof user, &size);
    if (token != nullptr) {
        ::CloseHandle(token);
    }
    const PSID userSid = reinterpret_cast<TOKEN_USER*>(user)->User.Sid;
    int usersEntries = 0;
    for (WORD i = 0; known && acl != nullptr && i < acl->AceCount; ++i) {
        void* entry = nullptr;
        ::GetAce(acl, i, &entry);
        const PSID sid = &static_cast<ACCESS_ALLOWED_ACE*>(entry)->SidStart;
        usersEntries += ::EqualSid(sid, userSid) ? 1 : 0;
        known = static_cast<ACE_HEADER*>(entry)->AceType == ACCESS_ALLOWED_ACE_TYPE &&
                (::EqualSid(sid, userSid) || ::EqualSid(sid, system));
    }
    ::LocalFree(descriptor);
    return known && usersEntries == 1;
#else
    return fs::status(file).permissions() == (fs::perms::owner_read | fs::perms::owner_write);
#endif
}

std::string Contents(const fs::path& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

TEST(PrivateFile, IsTheUsersAloneAndEachWriteReplacesItWhole) {
    const fs::path file = fs::temp_directory_path() /
                          ("vanto-private-" + std::to_string(platform::os::CurrentProcessId()));
    for (const std::string contents : {"{\"Port\":1,\"Secret\":\"longer\"}", "{\"Port\":2}"}) {
        platform::os::WritePrivateFile(file.u8string(), contents);
        EXPECT_EQ(contents, Contents(file));
        EXPECT_TRUE(UsersAlone(file));
        EXPECT_FALSE(fs::exists(file.u8string() + ".new"));
    }
    fs::remove(file);
    EXPECT_THROW(platform::os::WritePrivateFile((file / "no-such-folder" / "x").u8string(), "x"),
                 std::runtime_error);
}

#ifndef _WIN32
// Windows' console events cannot be raised under Wine (GenerateConsoleCtrlEvent fails there).
TEST(StopRequests, EachStopSignalStopsTheLoopOnItsThread) {
    for (const int signal : {SIGINT, SIGTERM}) {
        boost::asio::io_context io;
        int stops = 0;
        const platform::os::StopRequests requests(io, [&] {
            ++stops;
            io.stop();
        });
        std::raise(signal);
        io.run();
        EXPECT_EQ(1, stops) << signal;
    }
}
#endif

} // namespace
