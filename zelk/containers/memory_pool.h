#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

namespace zelk {

/// A source of uninitialised slots of Size bytes, taken from the C heap in chunks that double from
/// 16 slots up to 8192. Slots can be recycled; memory goes back only when the pool is destroyed.
///
/// Slots are aligned as pointers are. The second parameter is reserved: only `false` has a meaning.
template <std::size_t Size, bool Reserved>
class MemoryPool {
  static_assert(!Reserved, "no meaning is given to MemoryPool<Size, true>");
  static_assert(Size >= sizeof(void*) && Size % alignof(void*) == 0,
                "a free slot holds a pointer to the next one");

 public:
  MemoryPool() = default;
  MemoryPool(MemoryPool const&) = delete;
  MemoryPool& operator=(MemoryPool const&) = delete;

  ~MemoryPool() {
    while (chunks != nullptr) std::free(std::exchange(chunks, chunks->next));
  }

  /// A slot: the most recently recycled one, otherwise the next of the newest chunk.
  ///
  /// Cost: constant, but for the slots of a new chunk, each linked once.
  /// Throws: std::bad_alloc when a new chunk is needed and cannot be had.
  void* allocate() {
    if (free_list == nullptr) add_chunk();
    return std::exchange(free_list, free_list->next);
  }

  /// Takes a slot back. Requires: it came from this pool and holds no living object.
  void recycle(void* slot) noexcept { free_list = ::new (slot) Link{free_list}; }

 private:
  /// The first word of a free slot and of a chunk.
  struct Link {
    Link* next;
  };

  void add_chunk() {
    std::uint64_t const slots = chunk_objects;
    void* const memory = std::malloc(sizeof(Link) + slots * Size);
    if (memory == nullptr) throw std::bad_alloc();
    chunks = ::new (memory) Link{chunks};

    auto const grown =
        static_cast<std::uint64_t>(static_cast<float>(slots) * growth);  // exact: powers of two
    bool const is_limited = max_chunk_objects != 0 && max_chunk_objects < grown;
    chunk_objects = is_limited ? max_chunk_objects : grown;

    // From the last slot to the first, so that the list runs in address order.
    auto* const first = static_cast<std::byte*>(memory) + sizeof(Link);
    for (std::uint64_t i = slots; i > 0; --i) recycle(first + (i - 1) * Size);
  }

  std::uint64_t chunk_objects = 16;
  float growth = 2.0F;
  std::uint64_t max_chunk_objects = 8192;
  Link* chunks = nullptr;
  Link* free_list = nullptr;
};

}  // namespace zelk
