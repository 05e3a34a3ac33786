// Base of every object the connector core library allocates: objects live in its memory and are
// destroyed through their virtual destructor, which hands the allocator the object's own size.
#pragma once

#include "core/MemoryManager.h"

#include <cstddef>

namespace Core {

class AllocatableObject {
public:
    AllocatableObject() = default;
    AllocatableObject(const AllocatableObject&) = default;
    AllocatableObject& operator=(const AllocatableObject&) = default;
    virtual ~AllocatableObject() = default;

    static void* operator new(std::size_t size) { return MemoryManager::Allocate(size); }
    static void operator delete(void* block, std::size_t size) noexcept {
        MemoryManager::Free(block, size);
    }
};

} // namespace Core
