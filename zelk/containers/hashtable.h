#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "zelk/containers/object_pool.h"
#include "zelk/containers/primes.h"

namespace zelk::hsh {

/// A chained hash table that only grows: its nodes come from a pool of its own, stay where they
/// are, and live until the table is destroyed.
///
/// GetKey takes the Key out of a Value, Hash maps a Key to 64 bits, Eq compares two Keys; none of
/// them may throw. Lookups also take any stand-in K for a Key that Hash and Eq treat as the key it
/// stands for, so that a key need not be copied together to be looked up. Bucket counts are
/// `primes`, at first 31; before each insertion attempt a load above 0.7 grows the table to the
/// next one, by the hashes that the nodes carry: a key is hashed once for each lookup or insertion,
/// however often the table grows. A failed growth or insertion leaves every entry.
///
/// Cost: a lookup or insertion hashes once and compares keys of one chain, for hashes that scatter
/// fewer than 1.4 on the average; growth is a pass over all nodes, amortised constant.
/// Source: separate chaining, Knuth, The Art of Computer Programming, 6.4.
template <class Value, class GetKey, class Key, class Hash, class Eq>
class Hashtable {
 public:
  /// A node of a chain.
  struct Bucket {
    /// The next node of the chain, or null.
    Bucket* next;
    /// The entry. Its key must not change any more.
    Value value;
    /// The hash of the entry's key, once the node is in a chain.
    std::uint64_t hash;
  };

  /// The result of a lookup; `node` is null at the end. Two are equal when their nodes are.
  struct iterator {
    /// The array of chains.
    std::vector<Bucket*>* table_buckets;
    /// Its length when the lookup was made.
    std::size_t bucket_count;
    /// Which chain the entry is in.
    std::size_t index;
    /// The entry's node.
    Bucket* node;

    /// Whether both have the same node, or both none.
    friend bool operator==(iterator const& a, iterator const& b) { return a.node == b.node; }
  };

  /// Empty, with the first of `primes` for its bucket count.
  Hashtable() : buckets(primes.front(), nullptr) {}
  Hashtable(Hashtable const&) = delete;
  Hashtable& operator=(Hashtable const&) = delete;

  ~Hashtable() {
    for (Bucket* head : buckets)
      while (head != nullptr) pool.free(std::exchange(head, head->next));
  }

  /// What a lookup returns that finds nothing.
  iterator end() { return at(buckets.size(), nullptr); }

  /// The entry with key k, or the end. An empty table answers without hashing.
  template <class K = Key>
  iterator find(K const& k) {
    std::size_t index;
    Bucket* node;
    return count != 0 && do_find(k, &index, &node) ? at(index, node) : end();
  }

  /// Adds a copy of v unless its key is present, in which case nothing is replaced.
  /// Returns the entry with that key, and whether it was added.
  std::pair<iterator, bool> insert(Value const& v) {
    std::size_t index;
    Bucket* node;
    bool const added = do_insert(v, &index, &node);
    return {at(index, node), added};
  }

  /// Sets *index to the bucket of k; on true also *node to the entry with key k.
  template <class K = Key>
  bool do_find(K const& k, std::size_t* index, Bucket** node) {
    return locate(k, Hash()(k), index, node);
  }

  /// As `insert`, telling bucket and node of the entry, new or old, through the pointers.
  bool do_insert(Value const& v, std::size_t* index, Bucket** node) {
    return find_or_add(GetKey()(v), index, node, v);
  }

  /// As `do_insert`, of a value made of `parts` only when k, its key, is absent.
  template <class K, class... Parts>
  bool find_or_add(K const& k, std::size_t* index, Bucket** node, Parts const&... parts) {
    make_room();
    std::uint64_t const hash = Hash()(k);
    if (locate(k, hash, index, node)) return false;
    *node = new_Bucket(parts...);
    (*node)->hash = hash;
    push(buckets[*index], *node);
    ++count;
    return true;
  }

  /// Makes the bucket count the least of `primes` that is n or more (the largest of them when none
  /// is), unless it is n or more already. Entries that meet in a new chain stand in reverse order
  /// of the walk over the old one.
  ///
  /// Cost: a pass over all nodes, without hashing. Throws: std::bad_alloc; the table is as it was.
  void rehash(std::size_t n) {
    if (buckets.size() >= n) return;
    auto const* const least = std::lower_bound(primes.begin(), primes.end() - 1, n);
    std::vector<Bucket*> grown(*least, nullptr);
    for (Bucket* head : buckets) {
      while (head != nullptr) {
        Bucket* const node = std::exchange(head, head->next);
        push(grown[node->hash % grown.size()], node);
      }
    }
    buckets.swap(grown);
  }

  /// The load check of every insertion attempt, made before the key is looked up.
  void make_room() {
    float const load = static_cast<float>(count) / static_cast<float>(buckets.size());
    if (static_cast<double>(load) > 0.7) rehash(buckets.size() + 1);
  }

  /// A node from the pool with a value made of `parts` (a copy of it, if that is a Value), in no
  /// chain.
  template <class... Parts>
  Bucket* new_Bucket(Parts const&... parts) {
    void* const slot = pool.allocate();
    try {
      return ::new (slot) Bucket{nullptr, Value(parts...), 0};
    } catch (...) {
      pool.recycle(slot);
      throw;
    }
  }

  /// The numbers of entries and of chains.
  std::size_t size() const { return count; }
  std::size_t bucket_count() const { return buckets.size(); }

  /// The first node of a chain, for looking at what the table holds. Requires: index is below
  /// bucket_count().
  Bucket const* chain(std::size_t index) const { return buckets[index]; }

 private:
  template <class K>
  bool locate(K const& k, std::uint64_t hash, std::size_t* index, Bucket** node) {
    *index = hash % buckets.size();
    for (Bucket* candidate = buckets[*index]; candidate != nullptr; candidate = candidate->next) {
      if (Eq()(GetKey()(candidate->value), k)) {
        *node = candidate;
        return true;
      }
    }
    return false;
  }

  static void push(Bucket*& head, Bucket* node) {
    node->next = head;
    head = node;
  }

  iterator at(std::size_t index, Bucket* node) { return {&buckets, buckets.size(), index, node}; }

  ObjectPool<Bucket, false> pool;
  std::vector<Bucket*> buckets;
  std::uint64_t count = 0;
};

}  // namespace zelk::hsh
