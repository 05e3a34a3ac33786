// The mock services' process-wide state: the store read once from the XML input file, the
// error-code names and the logged-on user.
#pragma once

#include "VANTO.h"
#include "log/Guard.h"
#include "mock/MockInput.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace vanto::mock {

struct MockProject {
    GUserText projectName;
    GUserText owner;
};

struct MockFile {
    GUserText fileName;
    bool checkedOut = true;
    bool checkedIn = true;
    HRESULT errorCode = 0;
    GUserText checkedOutBy;
    GUserText note; // never filled from the file
};

using MockFileMap = std::map<GUserText, MockFile, GUserTextLessNoCase>;

struct MockStore {
    GUserText rootFolder;
    std::map<GUserText, MockProject> projects;
    MockFileMap files;
    GUserText userName;
};

// The store, read from the input file by the first call. Null only when it cannot be allocated;
// an unreadable or malformed file leaves it empty (or with what was taken over before the fault).
MockStore* Store() noexcept;

// What a store-backed method answers: `answer(store)`, or 0x8007000E when there is no store or
// memory runs out on the way.
template <class Answer> HRESULT AnswerFromStore(Answer answer) noexcept {
    return Guard(E_OUTOFMEMORY, WithoutLine, [&] {
        const MockStore* store = Store();
        return store != nullptr ? answer(*store) : E_OUTOFMEMORY;
    });
}

// Fills `store` from the text of an input file. Never throws; stops at the first fault.
void ReadInput(std::string_view xml, MockStore& store) noexcept;

// The HRESULT an "ErrorCode" name stands for; 0 for a name that is not known.
HRESULT ErrorCodeFromName(const GUserText& name);

// The logged-on user's name, read from the system once per process (again only while empty).
const wchar_t* LogonUser();

// What the mock works out for one check-in or check-out item. Nobody gets these results: the
// mock leaves the caller's items as they are.
FileCheckInEntry CheckInResult(const MockFileMap& files, const FileCheckInEntry& item);
FileLockStatus CheckOutResult(const MockFileMap& files, const GUserText& fileName,
                              const FileLockStatus& item);

// For tests; not exported from the module. Drops the store (the next call reads the file again),
// empties the user buffer, and replaces how the user name is read (null restores the system's);
// returns the previous source.
using UserNameSource = std::wstring (*)();
void ResetMockStateForTesting();
// For tests; not exported from the module. While set, a store that is not there yet cannot be
// allocated, as when memory has run out (ResetMockStateForTesting clears it).
void FailStoreAllocationForTesting(bool fail);
UserNameSource SetUserNameSourceForTesting(UserNameSource source);

} // namespace vanto::mock
