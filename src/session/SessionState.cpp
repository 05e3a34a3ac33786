#include "session/SessionState.h"

#include "entry/VANTOManager.h"

namespace vanto {

SessionState& Session() {
    static SessionState state;
    return state;
}

bool IsValidSession(const VANTOManager& manager) {
    return !Session().sessionId.empty() && manager.Proxy() != nullptr;
}

void ResetSessionStateForTesting() {
    Session() = SessionState();
}

} // namespace vanto
