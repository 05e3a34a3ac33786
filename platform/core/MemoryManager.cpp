#include "core/MemoryManager.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace Core {

namespace {
std::atomic<std::int64_t> liveAllocations{0};
}

void* MemoryManager::Allocate(std::size_t size) {
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

} // namespace Core
