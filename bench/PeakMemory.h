// Heap bytes in use and their high-water mark, for every allocation of the process (the C
// library's allocator is wrapped, so the core library's memory and std::string's are both seen).
#pragma once

#include <cstdint>

namespace bench {

// False where the allocator cannot be wrapped; the figures below are then 0.
bool PeakMemoryAvailable() noexcept;
std::int64_t HeapInUse() noexcept;
std::int64_t HeapPeak() noexcept;
// Starts a new high-water mark at the present use.
void ResetHeapPeak() noexcept;

} // namespace bench
