// Small blocks come from per-thread free lists, one per size class, refilled from 32 KiB chunks
// taken from the C heap; larger blocks come from the C heap itself. Freed small blocks stay in
// the pool for the next call. Each thread has its own pool, so the common path takes no lock and
// no atomic read-modify-write; a thread's pool goes to the next new thread when it ends.
//
// Under AddressSanitizer every block comes from the C heap, so that it sees each one, and the
// counts are kept under the lock, with no thread-local data: the sanitizer's leak check reads a
// shared library's thread storage with a guess at the C library's layout that fails when the
// storage starts 16 bytes into a page (LeakSanitizer then dies on exit of a host that loads this
// library), and the pool's thread-local data can land there.
#include "core/MemoryManager.h"
#include "os/ThreadLocal.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>
#include <thread>

#if defined(__SANITIZE_ADDRESS__)
#define VANTO_POOL_PASS_THROUGH 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VANTO_POOL_PASS_THROUGH 1
#endif
#endif

namespace Core {

namespace {

#if defined(VANTO_POOL_PASS_THROUGH)
constexpr bool Pooling = false;
#else
constexpr bool Pooling = true;
#endif
constexpr std::size_t LargestPooled = 512;
constexpr std::size_t Grain = 8;
constexpr std::size_t Classes = LargestPooled / Grain;
constexpr std::size_t ChunkSize = 32 * 1024;

// Class c holds blocks of (c + 1) * Grain bytes.
std::size_t ClassOf(std::size_t size) noexcept {
    return size == 0 ? 0 : (size - 1) / Grain;
}

// Whether a block of `size` bytes comes from the pool rather than from the C heap.
bool Pooled(std::size_t size) noexcept {
    return Pooling && size <= LargestPooled;
}

struct FreeBlock {
    FreeBlock* next;
};

// One thread's blocks and counts. Counts are written by that thread alone and read by any.
struct Pool {
    // Freed blocks, oldest first, and the newest (meaningless while its list is empty). Blocks go
    // back out in the order they came in: a record's blocks are freed in the order it was built,
    // so the next read walks them forward through memory, which the processor fetches ahead,
    // rather than backwards across every size at once.
    FreeBlock* free[Classes] = {};
    FreeBlock* last[Classes] = {};
    // Per class, the part of its newest chunk not handed out yet. A chunk holds blocks of one
    // size only, so blocks of a size made one after the other stay side by side when reused.
    char* next[Classes] = {};
    char* end[Classes] = {};
    std::atomic<std::int64_t> calls{0};
    std::atomic<std::int64_t> frees{0};
    Pool* nextPool = nullptr;  // every pool ever made
    Pool* nextSpare = nullptr; // pools whose thread has ended
};

void Count(std::atomic<std::int64_t>& counter) noexcept {
    counter.store(counter.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

// Guards the lists of pools and the shared pool; taken when a thread starts or ends using the
// pool and when the counts are read, never on the common path (on every call under
// AddressSanitizer).
std::atomic_flag poolsBusy = ATOMIC_FLAG_INIT;
Pool* pools = nullptr;
// For a thread whose own pool has already gone (objects destroyed after its thread-local ones),
// and for every thread under AddressSanitizer.
Pool shared;
// Calls that failed: they are counted as calls but hand out no block.
std::atomic<std::int64_t> failedCalls{0};
// Calls to go until the failing one; 0 for none.
std::atomic<std::int64_t> failCountdown{0};

class PoolsLock {
public:
    PoolsLock() noexcept {
        while (poolsBusy.test_and_set(std::memory_order_acquire)) {
            std::this_thread::yield();
        }
    }
    ~PoolsLock() { poolsBusy.clear(std::memory_order_release); }
    PoolsLock(const PoolsLock&) = delete;
    PoolsLock& operator=(const PoolsLock&) = delete;
};

#if defined(VANTO_POOL_PASS_THROUGH)
Pool* ThreadPool() noexcept {
    return nullptr;
}
Pool* ThreadPoolIfMade() noexcept {
    return nullptr;
}
#else
// Pools whose thread has ended, for the next new threads.
Pool* spares = nullptr;
VANTO_FAST_THREAD_LOCAL thread_local Pool* threadPool = nullptr;
VANTO_FAST_THREAD_LOCAL thread_local bool threadEnded = false;

// Hands the thread's pool over to the spares when the thread ends. It keeps the pool itself: the
// other thread-local variables may already be gone by then (MinGW's emulated thread storage).
struct PoolReturn {
    Pool* pool = nullptr;
    ~PoolReturn() {
        if (pool == nullptr) {
            return;
        }
        PoolsLock lock;
        pool->nextSpare = spares;
        spares = pool;
        threadPool = nullptr;
        threadEnded = true;
    }
};
VANTO_FAST_THREAD_LOCAL thread_local PoolReturn poolReturn;

// The thread's pool, made or taken from the spares on first use; null once the thread's own
// pool has gone.
Pool* ThreadPool() {
    if (threadPool != nullptr || threadEnded) {
        return threadPool;
    }
    PoolsLock lock;
    if (spares != nullptr) {
        threadPool = spares;
        spares = spares->nextSpare;
    } else {
        threadPool = new Pool();
        threadPool->nextPool = pools;
        pools = threadPool;
    }
    poolReturn.pool = threadPool;
    return threadPool;
}

Pool* ThreadPoolIfMade() noexcept {
    return threadPool;
}
#endif

void* FromHeap(std::size_t size) {
    void* block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

// Puts `block` at the end of class c's free list.
void Append(Pool& pool, std::size_t c, void* block) noexcept {
    auto* freed = static_cast<FreeBlock*>(block);
    freed->next = nullptr;
    if (pool.free[c] == nullptr) {
        pool.free[c] = freed;
    } else {
        pool.last[c]->next = freed;
    }
    pool.last[c] = freed;
}

// A fresh block of class c's size from the class's newest chunk, or from a new one. What is left
// of the old chunk goes to the free list of its size.
void* Carve(Pool& pool, std::size_t c) {
    const std::size_t size = (c + 1) * Grain;
    char*& next = pool.next[c];
    char* const end = pool.end[c];
    if (static_cast<std::size_t>(end - next) < size) {
        char* chunk = static_cast<char*>(FromHeap(ChunkSize));
        if (end != next) {
            Append(pool, ClassOf(static_cast<std::size_t>(end - next)), next);
        }
        next = chunk;
        pool.end[c] = chunk + ChunkSize;
    }
    void* block = next;
    next += size;
    return block;
}

// Whether the seam makes this call fail.
bool FailsNow() noexcept {
    std::int64_t left = failCountdown.load(std::memory_order_relaxed);
    while (left > 0 &&
           !failCountdown.compare_exchange_weak(left, left - 1, std::memory_order_relaxed)) {
    }
    return left == 1;
}

// The first block of a free list, or null when it is empty.
FreeBlock* Pop(FreeBlock*& list) noexcept {
    FreeBlock* block = list;
    if (block != nullptr) {
        list = block->next;
        // Freed blocks have mostly left the cache by the time they come back; fetching the next
        // one now keeps the following call from waiting for it.
        __builtin_prefetch(list);
    }
    return block;
}

void* Take(Pool& pool, std::size_t size) {
    Count(pool.calls);
    try {
        if (failCountdown.load(std::memory_order_relaxed) != 0 && FailsNow()) {
            throw std::bad_alloc();
        }
        if (!Pooled(size)) {
            return FromHeap(size);
        }
        const std::size_t c = ClassOf(size);
        if (FreeBlock* block = Pop(pool.free[c])) {
            return block;
        }
        return Carve(pool, c);
    } catch (...) {
        failedCalls.fetch_add(1, std::memory_order_relaxed);
        throw;
    }
}

void Give(Pool& pool, void* block, std::size_t size) noexcept {
    Count(pool.frees);
    if (!Pooled(size)) {
        std::free(block);
        return;
    }
    Append(pool, ClassOf(size), block);
}

// Sums `counter` over every pool.
std::int64_t Total(std::atomic<std::int64_t> Pool::*counter) noexcept {
    PoolsLock lock;
    std::int64_t total = (shared.*counter).load(std::memory_order_relaxed);
    for (const Pool* pool = pools; pool != nullptr; pool = pool->nextPool) {
        total += (pool->*counter).load(std::memory_order_relaxed);
    }
    return total;
}

// Any call that the common case leaves: kept out of line so that the common case saves no
// registers.
__attribute__((noinline)) void* AllocateSlowly(std::size_t size) {
    if (Pool* pool = ThreadPool()) {
        return Take(*pool, size);
    }
    PoolsLock lock;
    return Take(shared, size);
}

} // namespace

// The common case first: a block of the size at hand that this thread has freed before.
void* MemoryManager::Allocate(std::size_t size) {
    Pool* pool = ThreadPoolIfMade();
    if (pool != nullptr && Pooled(size) && failCountdown.load(std::memory_order_relaxed) == 0) {
        if (FreeBlock* block = Pop(pool->free[ClassOf(size)])) {
            Count(pool->calls);
            return block;
        }
    }
    return AllocateSlowly(size);
}

void MemoryManager::Free(void* block, std::size_t size) noexcept {
    if (block == nullptr) {
        return;
    }
    // A thread that has not allocated yet gives its first block to the shared pool, as making a
    // pool could fail here.
    if (Pool* pool = ThreadPoolIfMade()) {
        Give(*pool, block, size);
        return;
    }
    PoolsLock lock;
    Give(shared, block, size);
}

std::size_t MemoryManager::Room(std::size_t size) noexcept {
    return Pooled(size) ? (ClassOf(size) + 1) * Grain : std::max<std::size_t>(size, 1);
}

std::int64_t MemoryManager::LiveAllocations() noexcept {
    return Total(&Pool::calls) - failedCalls.load(std::memory_order_relaxed) - Total(&Pool::frees);
}

std::int64_t MemoryManager::AllocationCount() noexcept {
    return Total(&Pool::calls);
}

void MemoryManager::FailAllocationForTesting(std::int64_t nth) noexcept {
    failCountdown.store(nth > 0 ? nth : 0, std::memory_order_relaxed);
}

} // namespace Core
