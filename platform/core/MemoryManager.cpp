#include "core/MemoryManager.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace Core {

namespace {
std::atomic<std::int64_t> liveAllocations{0};
std::atomic<std::int64_t> allocationCount{0};
// The value of allocationCount at which Allocate fails; 0 for none.
std::atomic<std::int64_t> failingAllocation{0};
} // namespace

void* MemoryManager::Allocate(std::size_t size) {
    const std::int64_t count = allocationCount.fetch_add(1, std::memory_order_relaxed) + 1;
    std::int64_t failing = count;
    if (failingAllocation.compare_exchange_strong(failing, 0, std::memory_order_relaxed)) {
        throw std::bad_alloc();
    }
    void* block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    liveAllocations.fetch_add(1, std::memory_order_relaxed);
    return block;
}

void MemoryManager::Free(void* block) noexcept {
    if (block == nullptr) {
        return;
    }
    liveAllocations.fetch_sub(1, std::memory_order_relaxed);
    std::free(block);
}

std::int64_t MemoryManager::LiveAllocations() noexcept {
    return liveAllocations.load(std::memory_order_relaxed);
}

std::int64_t MemoryManager::AllocationCount() noexcept {
    return allocationCount.load(std::memory_order_relaxed);
}

void MemoryManager::FailAllocationForTesting(std::int64_t nth) noexcept {
    failingAllocation.store(nth > 0 ? AllocationCount() + nth : 0, std::memory_order_relaxed);
}

} // namespace Core
