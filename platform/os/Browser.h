// Opening an address in the user's web browser.
#pragma once

#include <string>

namespace platform::os {

// Hands the address `url` (UTF-8) to the user's browser and does not wait for it: xdg-open on
// POSIX systems, ShellExecuteW on Windows. False when it could not be handed over.
bool OpenInBrowser(const std::string& url);

} // namespace platform::os
