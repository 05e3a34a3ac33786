// The host's per-user values, kept across runs: a small file under the user's configuration folder
// ($XDG_CONFIG_HOME, else ~/.config, then "vanto/host-user-values") on POSIX, the registry below
// HKEY_CURRENT_USER\Software\VANTO\HostUserValues on Windows. Values are kept apart per scope.
#pragma once

#include <string>

namespace platform::os {

// False when the value is not there or the store cannot be read.
bool ReadUserValue(int scope, const std::wstring& name, std::wstring& value);
// False when the store cannot be written.
bool WriteUserValue(int scope, const std::wstring& name, const std::wstring& value);

// Test seam: a non-empty `tag` moves the store to a scratch place of that name (a file in the
// temporary folder on POSIX, a key below HKEY_CURRENT_USER\Software\VANTO\Scratch on Windows), so
// that tests never touch the user's real values; an empty tag goes back to the real store.
void UseScratchUserValueStore(const std::wstring& tag);
// Removes every value of the scratch store; the real store is never cleared.
void ClearUserValueStore();

} // namespace platform::os
