#pragma once

#include <algorithm>
#include <cstddef>
#include <list>
#include <utility>
#include <vector>

#include "zelk/containers/primes.h"

namespace zelk::plain {

/// A chained table that walks its chains from the head, whatever their length.
template <class Key, class Hash>
struct Table {
  using Entry = std::pair<Key, unsigned>;
  using Chains = std::vector<std::list<Entry>>;

  Entry* find(Key const& key) {
    for (auto& entry : chain_of(key))
      if (entry.first == key) return &entry;
    return nullptr;
  }

  /// Adds the entry unless its key is there; returns the one with that key.
  Entry& add(Entry const& entry) {
    if (10 * count > 7 * chains.size()) rehash(chains.size() + 1);
    if (auto* const known = find(entry.first)) return *known;
    ++count;
    return chain_of(entry.first).emplace_front(entry);
  }

  void rehash(std::size_t n) {
    if (n <= chains.size()) return;
    Chains old(*std::ranges::lower_bound(hsh::primes, n));
    old.swap(chains);
    for (auto& chain : old)
      for (auto& entry : chain) chain_of(entry.first).push_front(entry);
  }

  std::list<Entry>& chain_of(Key const& key) { return chains[Hash()(key) % chains.size()]; }

  /// Whether the other table has the same chains, `same` telling whether two entries are.
  template <class Other, class Same>
  bool agrees(Other const& table, Same same) const {
    if (table.bucket_count() != chains.size() || table.size() != count) return false;
    for (std::size_t i = 0; i < chains.size(); ++i) {
      auto const* node = table.chain(i);
      for (Entry const& entry : chains[i]) {
        if (node == nullptr || !same(node->value, entry)) return false;
        node = node->next;
      }
      if (node != nullptr) return false;
    }
    return true;
  }

  Chains chains = Chains(31);
  std::size_t count = 0;
};

}  // namespace zelk::plain
