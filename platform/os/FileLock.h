// A lock on a file, held while the object lives. The system drops it when the process ends, by
// any means (a kill included), so a lock never outlives its holder. The file holds the holder's
// process id, for whoever is refused.
#pragma once

#include <cstdint>
#include <string>

namespace platform::os {

class FileLock {
public:
    // Creates the file when needed and takes the lock without waiting; Held() says whether it
    // was taken.
    explicit FileLock(const std::wstring& path);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    bool Held() const { return held_; }
    // The id the holder wrote: this process's while held; another's, or 0 when unreadable.
    unsigned long HolderId() const { return holder_; }

private:
    std::intptr_t handle_ = -1;
    bool held_ = false;
    unsigned long holder_ = 0;
};

// A lock on a file taken and given back again and again, for turns at something that processes
// share. Lock() waits as long as it takes, asleep in the system's queue for the lock, and wakes as
// the holder lets go: no polling, and no back-off that would keep it asleep while others take
// turn after turn. As with FileLock, the system drops the lock when its holder ends, by any means.
class TurnLock {
public:
    // Creates the file when needed; throws std::runtime_error when it cannot be opened.
    explicit TurnLock(const std::wstring& path);
    ~TurnLock();
    TurnLock(const TurnLock&) = delete;
    TurnLock& operator=(const TurnLock&) = delete;

    void Lock();
    void Unlock() noexcept;

private:
    std::intptr_t handle_ = -1;
};

} // namespace platform::os
