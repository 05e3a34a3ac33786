// What a program that serves until it is stopped needs of its system: a file for this user's eyes
// only, replaced in one step, and word when the user or the system asks it to stop.
#pragma once

#include <boost/asio/io_context.hpp>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace platform::os {

// Writes `contents` to the file `path` (UTF-8) so that this user alone may read or change it, and
// puts it in place of any file there in one step: a reader sees the old file or the new, never a
// part. POSIX: mode 0600, then rename(2). Windows: an explicit access list with a single entry,
// full access for the user's own SID, protected from the folder's inherited entries; then
// MoveFileExW with MOVEFILE_REPLACE_EXISTING (the list moves with the file). Throws
// std::runtime_error when it cannot.
void WritePrivateFile(const std::string& path, std::string_view contents);

// Opens the file `path` (UTF-8) for appending, created when missing, so that programs this one
// starts do not inherit it (POSIX "e", Windows "N"); null when it cannot.
std::FILE* OpenForAppending(const std::string& path);

// While it lives, a request to stop calls `stop` on the thread that runs `io`. POSIX: SIGINT and
// SIGTERM. Windows: Ctrl+C, Ctrl+Break, closing the console, signing out and shutting down; for
// the last three Windows ends the process once the handler returns, so the handler waits there
// until the program has finished (returned from main). One at a time in a process.
class StopRequests {
public:
    StopRequests(boost::asio::io_context& io, std::function<void()> stop);
    ~StopRequests();
    StopRequests(const StopRequests&) = delete;
    StopRequests& operator=(const StopRequests&) = delete;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace platform::os
