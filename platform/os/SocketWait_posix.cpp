#include "os/SocketWait.h"

#include <cerrno>
#include <poll.h>

namespace platform::os {

bool WaitForSocket(std::uintptr_t socket, SocketWait what, int milliseconds) {
    pollfd entry{static_cast<int>(socket),
                 static_cast<short>(what == SocketWait::Read ? POLLIN : POLLOUT), 0};
    int ready = 0;
    do {
        ready = ::poll(&entry, 1, milliseconds);
    } while (ready < 0 && errno == EINTR);
    return ready != 0;
}

} // namespace platform::os
