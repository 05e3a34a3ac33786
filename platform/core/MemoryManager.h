// Stand-in for the connector core library's allocator. It counts live allocations so that tests
// can show that protocol records do not outlive the call that made them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Core {

class MemoryManager {
public:
    static void* Allocate(std::size_t size);
    static void Free(void* block) noexcept;

    // Blocks handed out by Allocate and not yet freed, process-wide.
    static std::int64_t LiveAllocations() noexcept;

    // Test seam, never used by the component. Calls to Allocate so far, process-wide.
    static std::int64_t AllocationCount() noexcept;
    // Test seam: the `nth` call to Allocate from now on (1 = the next one) throws std::bad_alloc,
    // once; 0 switches a pending failure off.
    static void FailAllocationForTesting(std::int64_t nth) noexcept;
};

} // namespace Core
