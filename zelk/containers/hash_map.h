#pragma once

#include <cstddef>
#include <utility>

#include "zelk/containers/hashtable.h"

namespace zelk::hsh {

/// The key of a map's entry: the first of the pair.
template <class K, class V>
struct GetKey_pair {
  /// A reference into the entry.
  K const& operator()(std::pair<K, V> const& entry) const { return entry.first; }
};

/// A `Hashtable` of pairs, looked up by their first.
template <class Key, class Mapped, class Hash, class Eq>
class HashMap : public Hashtable<std::pair<Key, Mapped>, GetKey_pair<Key, Mapped>, Key, Hash, Eq> {
 public:
  /// The value under k, inserted value-initialised when absent. Counts as an insertion attempt:
  /// the load check runs even when k is present.
  Mapped& operator[](Key const& k) { return get_by(k); }

  /// The same by a stand-in for the key.
  template <class StandIn>
  Mapped& get_by(StandIn const& k) {
    std::size_t index;
    typename HashMap::Bucket* node;
    this->find_or_add(k, &index, &node, k, Mapped());
    return node->value.second;
  }

  /// Puts a finished value, or what makes one, under a key or what stands for it: a new entry is
  /// complete when it is first seen, a present one is assigned to. Returns the stored value. One
  /// insertion attempt, as `operator[]`.
  template <class StandIn, class Part = Mapped>
  Mapped& store(StandIn const& k, Part const& value) {
    std::size_t index;
    typename HashMap::Bucket* node;
    if (!this->find_or_add(k, &index, &node, k, value)) node->value.second = Mapped(value);
    return node->value.second;
  }
};

}  // namespace zelk::hsh
