#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zelk::hsh {

/// Finds the nodes of one long chain by a hash of their own, finer than the one that has put them
/// all into one chain. Open addressing with linear probing, at most half full (Knuth, The Art of
/// Computer Programming, 6.4).
template <class Node>
class ChainIndex {
 public:
  /// Whether there is nothing in it.
  bool is_empty() const { return slots.empty(); }

  /// The node that was added first of those with this hash that `is_it` takes, or null.
  /// Requires: not empty.
  template <class IsIt>
  Node* find(std::uint64_t hash, IsIt is_it) const {
    for (std::size_t i = place(hash); slots[i].node != nullptr; i = next(i))
      if (slots[i].hash == hash && is_it(*slots[i].node)) return slots[i].node;
    return nullptr;
  }

  /// Adds a node. Throws: std::bad_alloc; the index is then as it was.
  void add(std::uint64_t hash, Node* node) {
    if (2 * (count + 1) > slots.size()) grow();
    put({hash, node});
    ++count;
  }

 private:
  struct Slot {
    std::uint64_t hash = 0;
    Node* node = nullptr;  // null when the slot is free
  };

  std::size_t place(std::uint64_t hash) const { return hash & (slots.size() - 1); }
  std::size_t next(std::size_t i) const { return (i + 1) & (slots.size() - 1); }

  void put(Slot slot) {
    std::size_t i = place(slot.hash);
    while (slots[i].node != nullptr) i = next(i);
    slots[i] = slot;
  }

  void grow() {
    std::vector<Slot> old(slots.empty() ? 128 : 2 * slots.size());
    // From the end of a run of occupied slots on: nodes with one hash keep their order.
    slots.swap(old);
    std::size_t start = 0;
    while (start < old.size() && old[start].node != nullptr) ++start;
    for (std::size_t i = 0; i < old.size(); ++i)
      if (Slot const slot = old[(start + i) % old.size()]; slot.node != nullptr) put(slot);
  }

  std::vector<Slot> slots;  // none, or a power of two of them
  std::size_t count = 0;
};

}  // namespace zelk::hsh
