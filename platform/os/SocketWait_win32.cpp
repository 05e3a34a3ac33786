#include "os/SocketWait.h"

#include <winsock2.h>

namespace platform::os {

bool WaitForSocket(std::uintptr_t socket, SocketWait what, int milliseconds) {
    WSAPOLLFD entry{static_cast<SOCKET>(socket),
                    static_cast<SHORT>(what == SocketWait::Read ? POLLRDNORM : POLLWRNORM), 0};
    return ::WSAPoll(&entry, 1, milliseconds) != 0;
}

} // namespace platform::os
