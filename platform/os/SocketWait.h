// Waiting, with a time limit, until a socket can be read or written: the system's own poll, so
// that a call on a non-blocking socket costs a system call or two and no more.
#pragma once

#include <cstdint>

namespace platform::os {

enum class SocketWait { Read, Write };

// Waits up to `milliseconds` (0: only looks). True when the socket is ready or has failed (the
// next read or write then says how), false when the time ran out.
bool WaitForSocket(std::uintptr_t socket, SocketWait what, int milliseconds);

} // namespace platform::os
