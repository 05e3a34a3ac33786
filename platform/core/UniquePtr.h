// The core library's owning pointer. Objects it owns derive from AllocatableObject, so deleting
// them goes back to the core allocator through the virtual destructor.
#pragma once

#include <memory>

namespace Core {

template <class T> using UniquePtr = std::unique_ptr<T>;

} // namespace Core
