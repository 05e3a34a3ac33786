// Base of every object the connector core library allocates: objects live in its memory and are
// destroyed through their virtual destructor.
#pragma once

#include "core/MemoryManager.h"

#include <cstddef>
#include <new>

namespace Core {

class AllocatableObject {
public:
    AllocatableObject() = default;
    AllocatableObject(const AllocatableObject&) = default;
    AllocatableObject& operator=(const AllocatableObject&) = default;
    virtual ~AllocatableObject() = default;

    static void* operator new(std::size_t size) { return MemoryManager::Allocate(size); }
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
        try {
            return MemoryManager::Allocate(size);
        } catch (...) {
            return nullptr;
        }
    }
    static void operator delete(void* block) noexcept { MemoryManager::Free(block); }
    static void operator delete(void* block, const std::nothrow_t&) noexcept {
        MemoryManager::Free(block);
    }
};

} // namespace Core
