#pragma once

#include <cstddef>
#include <utility>

#include "zelk/containers/hashtable.h"

namespace zelk::hsh {

/// The key of a map's entry: the first of the pair.
template <class K, class V>
struct GetKey_pair {
  K const& operator()(std::pair<K, V> const& entry) const { return entry.first; }
};

/// A `Hashtable` of pairs, looked up by their first.
template <class Key, class Mapped, class Hash, class Eq>
class HashMap : public Hashtable<std::pair<Key, Mapped>, GetKey_pair<Key, Mapped>, Key, Hash, Eq> {
 public:
  /// The value under k, inserted value-initialised when absent. Counts as an insertion attempt:
  /// the load check runs even when k is present.
  template <class K = Key>
  Mapped& operator[](K const& k) {
    std::size_t index;
    typename HashMap::Bucket* node;
    this->make_room();
    if (!this->do_find(k, &index, &node)) node = this->add(index, k, Mapped());
    return node->value.second;
  }

  /// Puts a finished value under k, over one that is there: no entry is ever seen half made.
  /// Returns the stored value. One insertion attempt, as `operator[]`.
  template <class K = Key>
  Mapped& store(K const& k, Mapped const& value) {
    std::size_t index;
    typename HashMap::Bucket* node;
    this->make_room();
    if (this->do_find(k, &index, &node))
      node->value.second = value;
    else
      node = this->add(index, k, value);
    return node->value.second;
  }
};

}  // namespace zelk::hsh
