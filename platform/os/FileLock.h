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

} // namespace platform::os
