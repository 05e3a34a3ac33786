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

bool IsSpace(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}
bool IsNameChar(char c) {
    return c != '\0' && !IsSpace(c) && c != '/' && c != '>' && c != '?';
}
bool IsAttributeNameChar(char c) {
    return IsNameChar(c) && c != '<' && c != '=' && c != '!';
}

// A flat walk over the reader's markup. Every rule below is the reader's own, and the walk stops
// where the reader would stop with an error, so it counts exactly the elements the reader opens.
class NestingScan {
public:
    explicit NestingScan(std::string_view xml) : text_(xml.substr(0, xml.find('\0'))) {}

    // The deepest element nesting the reader reaches before it ends or stops at a fault.
    std::size_t Deepest() {
        if (text_.substr(0, 3) == "\xEF\xBB\xBF") {
            pos_ = 3;
        }
        std::size_t depth = 0;
        std::size_t deepest = 0;
        for (;;) {
            if (depth == 0) {
                Skip(IsSpace);
                if (pos_ >= text_.size() || At(0) != '<') {
                    return deepest;
                }
            } else if (!SkipPast("<", false)) {
                return deepest;
            }
            ++pos_; // '<'
            const char next = At(0);
            bool fine = true;
            if (next == '/') {
                fine = depth > 0 && CloseTag();
                depth -= fine ? 1 : 0;
            } else if (next == '?') {
                // The reader looks for "?>" only after the '?' that opened: "<?>" is no end.
                ++pos_;
                fine = SkipPast("?>", true);
            } else if (next == '!') {
                fine = Declaration();
            } else {
                bool opened = false;
                fine = OpenTag(opened);
                if (opened) {
                    deepest = std::max(deepest, ++depth);
                }
            }
            if (!fine) {
                return deepest;
            }
        }
    }

private:
    char At(std::size_t offset) const {
        return pos_ + offset < text_.size() ? text_[pos_ + offset] : '\0';
    }
    void Skip(bool (*test)(char)) {
        while (test(At(0))) {
            ++pos_;
        }
    }
    // Moves to `token` (past it when `past`); false when the text ends first.
    bool SkipPast(std::string_view token, bool past) {
        const std::size_t found = text_.find(token, pos_);
        if (found == std::string_view::npos) {
            return false;
        }
        pos_ = found + (past ? token.size() : 0);
        return true;
    }
    bool CloseTag() {
        ++pos_; // '/'
        Skip(IsNameChar);
        Skip(IsSpace);
        if (At(0) != '>') {
            return false;
        }
        ++pos_;
        return true;
    }
    bool Declaration() {
        if (At(1) == '-' && At(2) == '-') {
            pos_ += 3;
            return SkipPast("-->", true);
        }
        if (text_.substr(pos_ + 1, 7) == "[CDATA[") {
            pos_ += 8;
            return SkipPast("]]>", true);
        }
        if (text_.substr(pos_ + 1, 7) == "DOCTYPE" && IsSpace(At(8))) {
            pos_ += 9;
            return Doctype();
        }
        ++pos_;
        return SkipPast(">", true);
    }
    bool Doctype() {
        while (At(0) != '>') {
            if (At(0) == '\0') {
                return false;
            }
            if (At(0) == '[') {
                ++pos_;
                for (std::size_t brackets = 1; brackets > 0; ++pos_) {
                    const char c = At(0);
                    if (c == '\0') {
                        return false;
                    }
                    brackets += c == '[' ? 1 : 0;
                    brackets -= c == ']' ? 1 : 0;
                }
            } else {
                ++pos_;
            }
        }
        ++pos_;
        return true;
    }
    bool OpenTag(bool& opened) {
        const std::size_t name = pos_;
        Skip(IsNameChar);
        if (pos_ == name) {
            return false;
        }
        Skip(IsSpace);
        while (IsAttributeNameChar(At(0))) {
            Skip(IsAttributeNameChar);
            Skip(IsSpace);
            if (At(0) != '=') {
                return false;
            }
            ++pos_;
            Skip(IsSpace);
            const char quote = At(0);
            if (quote != '"' && quote != '\'') {
                return false;
            }
            ++pos_;
            if (!SkipPast(std::string_view(&quote, 1), true)) {
                return false;
            }
            Skip(IsSpace);
        }
        if (At(0) == '>') {
            ++pos_;
            opened = true;
            return true;
        }
        if (At(0) == '/' && At(1) == '>') {
            pos_ += 2;
            return true;
        }
        return false;
    }

    std::string_view text_;
    std::size_t pos_ = 0;
};

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

std::size_t DeepestNesting(std::string_view xml) {
    return NestingScan(xml).Deepest();
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
