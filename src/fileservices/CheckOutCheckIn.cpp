// Check-out, check-in and the lock status of files: the connector's design-revision locks behind
// the host's check-out model. The caller's map or list carries the state in and out.
#include "fileservices/CheckOutCheckIn.h"

#include "fileservices/CallFrame.h"
#include "fileservices/FirstOfName.h"
#include "fileservices/ReturnCodes.h"

#include <cstdint>

namespace vanto::fileservices {

namespace {

using Corvane::CommandIO::DataManagement::MCAD::CorvaneLockDesignRevisionsInput;
using Corvane::DataTypes::CorvaneDesignIdentifier;

// Locks that last until they are released.
constexpr std::int32_t LockWithoutExpiry = -1;

Core::UniquePtr<CorvaneDesignIdentifier> FileIdentifier(const GUserText& fileName) {
    Core::UniquePtr<CorvaneDesignIdentifier> identifier(new CorvaneDesignIdentifier());
    identifier->Value = ToUtf8(fileName);
    identifier->IdentifierType = vanto::protocol::IdentifierType::FilePath;
    return identifier;
}

// The signed-in user's name, as the session reports it.
GUserText SignedInUser(const CallFrame& frame) {
    SessionInfo info;
    frame.SessionService().GetSessionInfo(&info);
    return info.authenticatedUserName;
}

void SetHolder(FileLockStatus& status, const GUserText& holder, const GUserText& user) {
    status.isCheckedOut = true;
    status.checkedOutBy = holder;
    status.isCheckedOutByCurrentUser = holder.EqualsNoCase(user);
}

void ClearLock(FileLockStatus& status) {
    status.isCheckedOut = false;
    status.isCheckedOutByCurrentUser = false;
}

} // namespace

void MarkLocks(const CorvaneLockDesignRevisionsOutput& output, FileLockStatusMap& files,
               const GUserText& user) {
    FirstOfName<NameNoCase, FileLockStatus*> byName(files.size());
    for (auto& [name, status] : files) {
        byName.Add(name.wstr(), &status);
    }
    for (const auto& lock : output.Status) {
        if (FileLockStatus* const* status =
                byName.Find(FromNarrow(lock->DesignIdentifier).wstr())) {
            SetHolder(**status, FromUtf8(lock->LockedBy), user);
        }
    }
}

bool ClearRefusedLocks(const CorvaneLockDesignRevisionsOutput& output, FileLockStatusMap& files) {
    bool refused = false;
    for (const auto& error : output.Errors) {
        if (error->ErrorCode == vanto::protocol::ReturnCode::ObjectLocked) {
            continue;
        }
        for (const Core::TevString& id : error->Ids) {
            const auto found = files.find(FromNarrow(id));
            if (found != files.end()) {
                ClearLock(found->second);
            }
        }
        refused = true;
    }
    return refused;
}

void ApplyUnlockResults(const CorvaneUnLockDesignRevisionsOutput& output, FileCheckInList& files,
                        const CorvaneUnLockDesignRevisionsInput& sent) {
    FirstOfName<ExactName, FileCheckInEntry*> byName(files.size());
    for (std::size_t i = 0; i < files.size() && i < sent.DesignIdentifiers.size(); ++i) {
        byName.Add(sent.DesignIdentifiers[i]->Value, &files[i]);
    }
    for (const auto& lock : output.Status) {
        if (FileCheckInEntry* const* entry = byName.Find(lock->DesignIdentifier)) {
            (*entry)->errorCode = lock->ErrorCode;
            (*entry)->lockedBy = FromUtf8(lock->LockedBy);
        }
    }
}

void ApplyLockedBy(const FilePropertyEntry& file, FileLockStatus& status, const GUserText& user) {
    static const GUserText LockedBy(L"LockedBy");
    for (const ObjectTypeProperties& group : file.objectTypes) {
        if (group.objectType != vanto::protocol::ObjectType::Lock) {
            continue;
        }
        for (const PropertyEntry& property : group.properties) {
            if (!property.name.EqualsNoCase(LockedBy) || property.values.empty()) {
                continue;
            }
            if (property.values.front().IsEmpty()) {
                ClearLock(status); // the holder's name stays as it was
            } else {
                SetHolder(status, property.values.front(), user);
            }
        }
    }
}

} // namespace vanto::fileservices

using namespace vanto::fileservices;

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::CheckOut(FileLockStatusMap* files) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::CheckOut");
    if (!frame.SessionIsValid()) {
        return E_FAIL;
    }
    const Target<FileLockStatusMap> map(files);
    return frame.Guard(E_FAIL, [&] {
        CorvaneLockDesignRevisionsInput input;
        input.TimeToLive = LockWithoutExpiry;
        const GUserText user = SignedInUser(frame);
        // Any lock, the user's own included, keeps a file out of the request.
        for (const auto& [fileName, status] : *map) {
            if (status.isCheckedOut) {
                // clang-format off
                frame.Info(L"File Name : %s, is not proceeded for lock call since it is checked out to other user : %s",
                           fileName, status.checkedOutBy);
                // clang-format on
                continue;
            }
            frame.Info(L"File Name : %s", fileName);
            input.DesignIdentifiers.push_back(FileIdentifier(fileName));
        }
        if (input.DesignIdentifiers.empty()) {
            return S_OK;
        }
        const auto output =
            frame.Execute(input, {L"LockDesignRevisions Input: ", L"LockDesignRevisions Output: "});
        MarkLocks(output, *map, user);
        // Written whenever an answer came, before any error it reports.
        frame.Info(L"File Checkout successful.");
        if (output.Errors.empty()) {
            return S_OK;
        }
        frame.Error(L"Error while checkout.");
        return ClearRefusedLocks(output, *map) ? E_FAIL : S_OK;
    });
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::CheckIn(FileCheckInList* files) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::CheckIn");
    if (!frame.SessionIsValid()) {
        return E_FAIL;
    }
    const Target<FileCheckInList> list(files);
    return frame.Guard(E_FAIL, [&] {
        CorvaneUnLockDesignRevisionsInput input;
        input.DesignIdentifiers.reserve(list->size());
        for (const FileCheckInEntry& entry : *list) {
            frame.Info(L"File Name : %s", entry.fileName);
            input.DesignIdentifiers.push_back(FileIdentifier(entry.fileName));
        }
        // Sent even when the list is empty.
        const auto output = frame.Execute(
            input, {L"UnLockDesignRevisions Input: ", L"UnLockDesignRevisions Output: "});
        if (frame.Failed(output, L"Error while check-in.", ErrorCodes::NotReported)) {
            return E_FAIL;
        }
        ApplyUnlockResults(output, *list, input);
        frame.Info(L"Check-in successful. No errors found.");
        return S_OK;
    });
}

// No guard of its own: it relies on those of the methods it calls.
HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::GetCheckOutStatus(FileLockStatusMap* files, bool checkNewVersion) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::GetCheckOutStatus");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    const Target<FileLockStatusMap> map(files);
    const GUserText user = SignedInUser(frame);
    IVANTOFileServices& table = frame.Interface();
    FilePropertyList properties;
    const HRESULT result = table.GetProperties(KeysOf(*map), PropertyNameSet(), &properties);
    if (result != S_OK) {
        return result;
    }
    for (const FilePropertyEntry& file : properties) {
        const auto found = map->find(file.filePath);
        if (found == map->end()) {
            continue;
        }
        ApplyLockedBy(file, found->second, user);
        if (checkNewVersion) {
            found->second.isNewVersionAvailable = table.IsNewVersionAvailable(found->first);
        }
    }
    return result;
}
