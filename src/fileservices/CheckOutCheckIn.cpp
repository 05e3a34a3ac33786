// Check-out, check-in and the lock status of files: the connector's design-revision locks behind
// the host's check-out model. The caller's map or list carries the state in and out.
#include "fileservices/CheckOutCheckIn.h"

#include "fileservices/CallFrame.h"
#include "fileservices/ReturnCodes.h"

#include <cstdint>
#include <functional>
#include <iterator>
#include <string_view>
#include <vector>

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

// Name -> the first entry of that name, so that each answer is found in one look-up. Open
// addressing in one flat table at most half full: a slot holds the entry's index + 1 (0 is free)
// and part of the name's hash, which spares most text comparisons while probing. A list of a
// hundred thousand files costs no allocation per name.
class FirstEntryOfName {
public:
    static constexpr std::size_t None = static_cast<std::size_t>(-1);

    explicit FirstEntryOfName(const std::vector<std::string_view>& names)
        : names_(names), first_(names.size(), false) {
        std::size_t size = 1;
        while (size < 2 * names.size()) {
            size <<= 1;
        }
        slots_.resize(size);
        mask_ = size - 1;
        for (std::size_t i = 0; i < names.size(); ++i) {
            const std::size_t hash = Hash(names[i]);
            Slot& slot = slots_[SlotOf(names[i], hash)];
            if (slot.entry == 0) {
                slot = Slot{static_cast<std::uint32_t>(i + 1), Tag(hash)};
                first_[i] = true;
            }
        }
    }

    // The first entry named `name`, or None; `hint` is the entry most likely to be it.
    std::size_t Find(std::string_view name, std::size_t hint) const {
        if (hint < names_.size() && first_[hint] && names_[hint] == name) {
            return hint;
        }
        const std::uint32_t entry = slots_[SlotOf(name, Hash(name))].entry;
        return entry == 0 ? None : entry - 1;
    }

private:
    // Entry numbers fit 32 bits: a list of four billion files would not fit in memory.
    struct Slot {
        std::uint32_t entry = 0;
        std::uint32_t tag = 0;
    };

    static std::size_t Hash(std::string_view name) { return std::hash<std::string_view>()(name); }
    static std::uint32_t Tag(std::size_t hash) {
        return static_cast<std::uint32_t>(static_cast<std::uint64_t>(hash) >> 32);
    }

    // The slot of `name`: the one that holds it, else the free one where it would go.
    std::size_t SlotOf(std::string_view name, std::size_t hash) const {
        for (std::size_t at = hash & mask_;; at = (at + 1) & mask_) {
            const Slot& slot = slots_[at];
            if (slot.entry == 0 || (slot.tag == Tag(hash) && names_[slot.entry - 1] == name)) {
                return at;
            }
        }
    }

    const std::vector<std::string_view>& names_;
    std::vector<bool> first_;
    std::vector<Slot> slots_;
    std::size_t mask_ = 0;
};

} // namespace

void MarkLocks(const CorvaneLockDesignRevisionsOutput& output, FileLockStatusMap& files,
               const GUserText& user) {
    // The answer lists the files in the order they were sent, which is the map's own: the entry
    // after the last one found is tried first, and the map is searched only when it is not the
    // one. Keys are unique under the map's ordering, so either way finds the same entry.
    auto next = files.begin();
    for (const auto& lock : output.Status) {
        const GUserText name = FromNarrow(lock->DesignIdentifier);
        const auto found =
            next != files.end() && next->first.EqualsNoCase(name) ? next : files.find(name);
        if (found != files.end()) {
            SetHolder(found->second, FromUtf8(lock->LockedBy), user);
            next = std::next(found);
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
    std::vector<std::string_view> names;
    names.reserve(files.size());
    for (std::size_t i = 0; i < files.size() && i < sent.DesignIdentifiers.size(); ++i) {
        names.emplace_back(sent.DesignIdentifiers[i]->Value);
    }
    const FirstEntryOfName firstOf(names);
    // The answer lists the files in the order they were sent: the entry after the last one found
    // is tried first, so that a long list is mostly walked in order rather than looked up.
    std::size_t next = 0;
    for (const auto& lock : output.Status) {
        const std::size_t at = firstOf.Find(lock->DesignIdentifier, next);
        if (at != FirstEntryOfName::None) {
            FileCheckInEntry& entry = files[at];
            entry.errorCode = lock->ErrorCode;
            entry.lockedBy = FromUtf8(lock->LockedBy);
            next = at + 1;
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
        const auto output = frame.Execute(
            input, {L"LockDesignRevisions Input: %s", L"LockDesignRevisions Output: %s"});
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
            input, {L"UnLockDesignRevisions Input: %s", L"UnLockDesignRevisions Output: %s"});
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
