// glibc lets a program define malloc and friends and reach the real ones as __libc_*; each call
// is counted by the usable size of its block.
#include "PeakMemory.h"

#include <atomic>
#include <cstddef>

#if defined(__GLIBC__)
#include <malloc.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<bool> counting{false};
std::atomic<std::int64_t> inUse{0};
std::atomic<std::int64_t> peak{0};

void Added(void* block) noexcept {
    if (block == nullptr || !counting.load(std::memory_order_relaxed)) {
        return;
    }
    const auto now = inUse.fetch_add(static_cast<std::int64_t>(malloc_usable_size(block))) +
                     static_cast<std::int64_t>(malloc_usable_size(block));
    auto seen = peak.load();
    while (now > seen && !peak.compare_exchange_weak(seen, now)) {
    }
}

void Removed(void* block) noexcept {
    if (block != nullptr && counting.load(std::memory_order_relaxed)) {
        inUse.fetch_sub(static_cast<std::int64_t>(malloc_usable_size(block)));
    }
}

} // namespace

extern "C" {

void* malloc(std::size_t size) {
    void* block = __libc_malloc(size);
    Added(block);
    return block;
}

void* calloc(std::size_t count, std::size_t size) {
    void* block = __libc_calloc(count, size);
    Added(block);
    return block;
}

void* realloc(void* block, std::size_t size) {
    Removed(block);
    void* moved = __libc_realloc(block, size);
    Added(moved != nullptr ? moved : (size == 0 ? nullptr : block));
    return moved;
}

void* memalign(std::size_t alignment, std::size_t size) {
    void* block = __libc_memalign(alignment, size);
    Added(block);
    return block;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** out, std::size_t alignment, std::size_t size) {
    void* block = memalign(alignment, size);
    if (block == nullptr) {
        return 12; // ENOMEM
    }
    *out = block;
    return 0;
}

void free(void* block) {
    Removed(block);
    __libc_free(block);
}

} // extern "C"

namespace bench {

bool PeakMemoryAvailable() noexcept {
    return true;
}
void StartHeapCount() noexcept {
    inUse.store(0);
    peak.store(0);
    counting.store(true);
}
std::int64_t StopHeapCount() noexcept {
    counting.store(false);
    return peak.load();
}

} // namespace bench

#else

namespace bench {

bool PeakMemoryAvailable() noexcept {
    return false;
}
void StartHeapCount() noexcept {}
std::int64_t StopHeapCount() noexcept {
    return 0;
}

} // namespace bench

#endif
