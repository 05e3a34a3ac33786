// Process-wide connector session state, shared by every manager and both services.
#pragma once

#include <string>

class VANTOManager;

namespace vanto {

struct SessionState {
    std::string sessionId; // UTF-8; sent in every command
    bool registered = false;
    bool offline = false;
    bool firstConnect = true;
};

SessionState& Session();

// A session id has been granted and the manager has its proxy.
bool IsValidSession(const VANTOManager& manager);

// Back to the state of a fresh process. For tests; not exported from the module.
void ResetSessionStateForTesting();

} // namespace vanto
