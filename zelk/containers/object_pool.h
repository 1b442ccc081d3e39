#pragma once

#include "zelk/containers/memory_pool.h"

namespace zelk {

/// A pool of slots for objects of type T. Whoever takes a slot constructs the object in it.
template <class T, bool Reserved>
class ObjectPool : public MemoryPool<sizeof(T), Reserved> {
  static_assert(alignof(T) <= alignof(void*), "pool slots are aligned as pointers are");

 public:
  /// Destroys *p and recycles its slot. Requires: p was constructed in a slot of this pool.
  void free(T* p) noexcept {
    p->~T();
    this->recycle(p);
  }
};

}  // namespace zelk
