// Check-out and check-in: taking and releasing the locks of design revisions.
#include "Commands.h"

namespace vanto::emulator {

using namespace command;

namespace {

template <class Input, class Output, class Take>
void ForEachDesignLock(Store& store, const Context& c, const Input& in, Output& out,
                       ErrorList& errors, Take take) {
    for (const auto& id : in.DesignIdentifiers) {
        const std::string value = id->Value.str();
        CorvaneLockInfo& status = Append(out.Status);
        status.DesignIdentifier = id->Value;
        const auto d = store.FindDocument(value, id->IdentifierType);
        if (!d) {
            status.ErrorCode = ReturnCode::ObjectNotFoundInModel;
            errors.Add(ReturnCode::ObjectNotFoundInModel, value);
        } else if (d->lockUser != 0 && d->lockUser != c.user) {
            FillLock(status, value, *d, ReturnCode::ObjectLocked);
            errors.Add(ReturnCode::ObjectLocked, value);
        } else {
            take(status, value, *d);
        }
    }
}

} // namespace

VANTO_EMULATOR_COMMAND(LockDesignRevisions, command::CorvaneLockDesignRevisionsInput) {
    ForEachDesignLock(store, c, in, out, errors,
                      [&](CorvaneLockInfo& status, const std::string& value, const Document& d) {
                          if (store.Permission(d.key, c.user) < Permission::Write) {
                              status.ErrorCode = ReturnCode::AccessDenied;
                              errors.Add(ReturnCode::AccessDenied, value);
                              return;
                          }
                          // A time to live of -1 (or 0) never expires; otherwise it is in
                          // seconds.
                          store.SetLock(d.key, c.user, in.TimeToLive > 0 ? in.TimeToLive : -1);
                          FillLock(status, value, *store.DocumentByKey(d.key), NoError);
                      });
}

VANTO_EMULATOR_COMMAND(UnlockDesignRevisions, command::CorvaneUnLockDesignRevisionsInput) {
    ForEachDesignLock(
        store, c, in, out, errors,
        [&](CorvaneLockInfo&, const std::string&, const Document& d) { store.ClearLock(d.key); });
}

} // namespace vanto::emulator
