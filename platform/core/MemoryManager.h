// Stand-in for the connector core library's allocator: a pool of small blocks, as the real one
// is. It counts live allocations so that tests can show that protocol records do not outlive the
// call that made them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Core {

class MemoryManager {
public:
    // A block of at least `size` bytes, aligned to 8 (enough for every core type). Freed with
    // the same size, or with Room(size).
    static void* Allocate(std::size_t size);
    static void Free(void* block, std::size_t size) noexcept;
    // The bytes that Allocate(size) really hands out: a block may be used up to them.
    static std::size_t Room(std::size_t size) noexcept;

    // Blocks handed out by Allocate and not yet freed, process-wide.
    static std::int64_t LiveAllocations() noexcept;

    // Test seam, never used by the component. Calls to Allocate so far, process-wide.
    static std::int64_t AllocationCount() noexcept;
    // Test seam: the `nth` call to Allocate from now on (1 = the next one) throws std::bad_alloc,
    // once; 0 switches a pending failure off.
    static void FailAllocationForTesting(std::int64_t nth) noexcept;
};

} // namespace Core
