// Standard allocator over the core library's MemoryManager, for the core containers.
#pragma once

#include "core/MemoryManager.h"

#include <cstddef>

namespace Core {

template <class T> struct CoreAllocator {
    static_assert(alignof(T) <= 8, "the core allocator aligns blocks to 8 bytes");
    using value_type = T;

    CoreAllocator() noexcept = default;
    template <class U> CoreAllocator(const CoreAllocator<U>&) noexcept {}

    T* allocate(std::size_t n) { return static_cast<T*>(MemoryManager::Allocate(n * sizeof(T))); }
    void deallocate(T* block, std::size_t n) noexcept { MemoryManager::Free(block, n * sizeof(T)); }

    template <class U> bool operator==(const CoreAllocator<U>&) const noexcept { return true; }
    template <class U> bool operator!=(const CoreAllocator<U>&) const noexcept { return false; }
};

} // namespace Core
