#include "mock/MockStore.h"

#include "os/Os.h"
#include "os/Paths.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>

#include <algorithm>
#include <cwchar>
#include <new>
#include <sstream>
#include <utility>

namespace vanto::mock {

namespace {

using boost::property_tree::ptree;

constexpr std::size_t UserBufferSize = 260;

MockStore* g_store = nullptr;
bool g_storeAllocationFails = false;
wchar_t g_user[UserBufferSize] = {};
UserNameSource g_userSource = &platform::os::LogonUserName;

// A character reference such as "&#0;" can put a NUL into a text; the host's text ends there.
GUserText TextOf(const ptree& node) {
    const std::string& data = node.data();
    return GUserText(std::string_view(data.c_str()));
}

// Attributes and comments appear as children named "<xmlattr>" and "<xmlcomment>"; they are not
// elements.
bool IsElement(const ptree::value_type& child) {
    return child.first.empty() || child.first.front() != '<';
}

bool IsNo(const GUserText& text) {
    return text.EqualsNoCase(GUserText(L"no"));
}

// Repeated elements: the first counts, as for duplicate file names.
class Fields {
public:
    explicit Fields(const ptree& node) : node_(node) {}
    const ptree* Find(const char* name) const {
        for (const ptree::value_type& child : node_) {
            if (child.first == name) {
                return &child.second;
            }
        }
        return nullptr;
    }
    GUserText Text(const char* name) const {
        const ptree* found = Find(name);
        return found != nullptr ? TextOf(*found) : GUserText();
    }

private:
    const ptree& node_;
};

void TakeOver(const ptree& document, MockStore& store) {
    const ptree& xml = document.get_child("xml");
    const Fields fields(xml);
    store.rootFolder = fields.Text("RootFolder");
    store.userName = fields.Text("OrbexUserName");
    for (const ptree::value_type& section : xml) {
        if (section.first == "Projects") {
            for (const ptree::value_type& entry : section.second) {
                if (IsElement(entry)) {
                    const Fields project(entry.second);
                    const GUserText name = project.Text("ProjectName");
                    store.projects.emplace(name, MockProject{name, project.Text("Owner")});
                }
            }
        } else if (section.first == "Files") {
            for (const ptree::value_type& entry : section.second) {
                if (!IsElement(entry)) {
                    continue;
                }
                const Fields file(entry.second);
                MockFile record;
                record.fileName = file.Text("FileName");
                record.checkedOut = !IsNo(file.Text("CheckedOut"));
                record.checkedOutBy = file.Text("CheckedOutBy");
                record.errorCode = ErrorCodeFromName(file.Text("ErrorCode"));
                record.checkedIn = !IsNo(file.Text("CheckIn"));
                const GUserText key = record.fileName;
                store.files.emplace(key, std::move(record));
            }
        }
    }
}

void ReadInputFile(MockStore& store) noexcept {
    try {
        std::string xml;
        if (platform::os::ReadWholeFile(InputFilePath, xml)) {
            ReadInput(xml, store);
        }
    } catch (...) {
        // A file that cannot be read leaves the store as it is.
    }
}

} // namespace

MockStore* Store() noexcept {
    if (g_store == nullptr) {
        g_store = g_storeAllocationFails ? nullptr : new (std::nothrow) MockStore();
        if (g_store != nullptr) {
            ReadInputFile(*g_store);
        }
    }
    return g_store;
}

void ReadInput(std::string_view xml, MockStore& store) noexcept {
    try {
        if (DeepestNesting(xml) > MaxInputNesting) {
            return;
        }
        std::istringstream stream{std::string(xml)};
        ptree document;
        boost::property_tree::read_xml(stream, document,
                                       boost::property_tree::xml_parser::no_comments);
        TakeOver(document, store);
    } catch (...) {
        // Malformed input: the store keeps what was taken over so far.
    }
}

HRESULT ErrorCodeFromName(const GUserText& name) {
    static const std::map<GUserText, HRESULT> names = {
        {GUserText(L"DAL_E_CHECKED_OUT_TO_OTHER_USER"), static_cast<HRESULT>(0x8004B001)}};
    const auto found = names.find(name);
    return found != names.end() ? found->second : 0;
}

const wchar_t* LogonUser() {
    if (g_user[0] == L'\0') {
        const std::wstring name = g_userSource();
        // GetUserNameW fails on a name that does not fit the buffer.
        if (name.size() < UserBufferSize) {
            std::wmemcpy(g_user, name.c_str(), name.size() + 1);
        }
    }
    return g_user;
}

FileCheckInEntry CheckInResult(const MockFileMap& files, const FileCheckInEntry& item) {
    FileCheckInEntry result = item;
    const auto found = files.find(item.fileName);
    if (found != files.end()) {
        if (!found->second.checkedIn) {
            result.errorCode = found->second.errorCode;
        }
        result.lockedBy = found->second.note;
    }
    return result;
}

FileLockStatus CheckOutResult(const MockFileMap& files, const GUserText& fileName,
                              const FileLockStatus& item) {
    FileLockStatus result = item;
    const auto found = files.find(fileName);
    if (found != files.end() && !found->second.checkedOut) {
        result.isCheckedOut = false;
        result.isCheckedOutByCurrentUser = false;
        result.checkedOutBy = found->second.checkedOutBy;
    }
    return result;
}

void ResetMockStateForTesting() {
    delete std::exchange(g_store, nullptr);
    g_storeAllocationFails = false;
    g_user[0] = L'\0';
}

void FailStoreAllocationForTesting(bool fail) {
    g_storeAllocationFails = fail;
}

UserNameSource SetUserNameSourceForTesting(UserNameSource source) {
    return std::exchange(g_userSource, source != nullptr ? source : &platform::os::LogonUserName);
}

} // namespace vanto::mock
