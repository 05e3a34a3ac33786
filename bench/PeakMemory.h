// The high-water mark of heap bytes in use over a stretch of code, for every allocation of the
// process (the C library's allocator is wrapped, so the core library's memory and std::string's
// are both seen). The core allocator's pool takes its chunks from the C library too, so a chunk
// counts whole from the moment it is taken, free blocks in it included. Counting is on only
// inside that stretch, so that the timed benchmarks pay nothing for it.
#pragma once

#include <cstdint>

namespace bench {

// False where the allocator cannot be wrapped; the peak is then 0.
bool PeakMemoryAvailable() noexcept;
// Counts from zero: every block allocated from now on adds its size, every block freed takes it
// away (a block allocated before the start as well, so free nothing older in the stretch).
void StartHeapCount() noexcept;
// Stops counting; the most bytes in use at once since the start.
std::int64_t StopHeapCount() noexcept;

} // namespace bench
