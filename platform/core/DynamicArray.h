// The core library's growable array. Its storage comes from the core allocator, so a list that
// outlives its record shows up in MemoryManager::LiveAllocations().
#pragma once

#include "core/CoreAllocator.h"

#include <vector>

namespace Core {

template <class T> using DynamicArray = std::vector<T, CoreAllocator<T>>;

} // namespace Core
