#pragma once

#include <cassert>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

#include "zelk/containers/chain_index.h"
#include "zelk/containers/object_pool.h"
#include "zelk/containers/primes.h"

namespace zelk::hsh {

/// A chained hash table that only grows: its nodes come from a pool of its own, stay where they
/// are, and live until the table is destroyed.
///
/// GetKey takes the Key out of a Value, Hash maps a Key to 64 bits, Eq compares two Keys; none of
/// them may throw. What takes a stand-in looks up by any object that Hash and Eq treat as the key
/// it stands for, so that a key need not be copied together to be looked up. Bucket counts are
/// `primes`, at first 31; before each insertion attempt a load above 0.7 grows the table to the
/// next one, by the hashes that the nodes carry: a key is hashed once for each lookup or insertion,
/// however often the table grows. A failed growth or insertion leaves every entry.
///
/// Cost: a lookup or insertion hashes once and compares keys of one chain, for hashes that scatter
/// fewer than 1.4 on the average; growth is a pass over all nodes, amortised constant. Where Hash
/// and Eq are one type that has a finer hash besides, `fine(k)`, equal for equal keys, and names
/// itself `FineFor`, a chain that has become long gets an index by it, and a lookup there costs
/// what it costs elsewhere. The index is beside the chain, which stays as it is; a host may ignore
/// it, and so does the table when memory for it cannot be had. Source: separate chaining, Knuth,
/// The Art of Computer Programming, 6.4.
template <class Value, class GetKey, class Key, class Hash, class Eq>
class Hashtable {
 public:
  /// What the table is looked up by.
  using key_type = Key;

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
  iterator find(Key const& k) { return find_by(k); }

  /// The same by a stand-in for the key.
  template <class StandIn>
  iterator find_by(StandIn const& k) {
    std::size_t index;
    Bucket* node;
    return count != 0 && locate(k, Hash()(k), &index, &node) ? at(index, node) : end();
  }

  /// The node of the entry with key k, or null, for tables that are only looked at.
  Bucket const* node_of(Key const& k) const {
    return count != 0 ? look_up(k, Hash()(k) % buckets.size()) : nullptr;
  }

  /// Adds a copy of v unless its key is present, in which case nothing is replaced.
  /// Returns the entry with that key, and whether it was added.
  std::pair<iterator, bool> insert(Value const& v) {
    std::size_t index;
    Bucket* node;
    bool const added = do_insert(v, &index, &node);
    return {at(index, node), added};
  }

  /// Sets *index to the bucket of k; when the answer is true, also *node to the entry with key k.
  bool do_find(Key const& k, std::size_t* index, Bucket** node) {
    return locate(k, Hash()(k), index, node);
  }

  /// As `insert`, telling bucket and node of the entry, new or old, through the pointers.
  bool do_insert(Value const& v, std::size_t* index, Bucket** node) {
    return find_or_add(GetKey()(v), index, node, v);
  }

  /// As `do_insert`, of a value made of `parts` only when its key, for which k may stand, is
  /// absent.
  template <class StandIn, class... Parts>
  bool find_or_add(StandIn const& k, std::size_t* index, Bucket** node, Parts const&... parts) {
    make_room();
    std::uint64_t const hash = Hash()(k);
    if (locate(k, hash, index, node)) return false;
    *node = new_node(parts...);
    (*node)->hash = hash;
    push(buckets[*index], *node);
    ++count;
    keep_index(*index);
    return true;
  }

  /// Makes the bucket count the least of `primes` that is n or more (the largest of them when none
  /// is), unless it is n or more already. Entries that meet in a new chain stand in reverse order
  /// of the walk over the old one.
  ///
  /// Cost: a pass over all nodes, without hashing. Throws: std::bad_alloc; the table is as it was.
  void rehash(std::size_t n) {
    if (buckets.size() >= n) return;
    auto const* least = primes.begin();
    while (*least < n && least != primes.end() - 1) ++least;
    std::vector<Bucket*> grown(*least, nullptr);
    for (Bucket* head : buckets) {
      while (head != nullptr) {
        Bucket* const node = std::exchange(head, head->next);
        push(grown[node->hash % grown.size()], node);
      }
    }
    buckets.swap(grown);
    if (indexes.empty()) return;
    indexes.clear();  // the chains are others now
    for (std::size_t i = 0; i < buckets.size(); ++i) keep_index(i);
  }

  /// The load check of every insertion attempt, made before the key is looked up.
  void make_room() {
    float const load = static_cast<float>(count) / static_cast<float>(buckets.size());
    if (static_cast<double>(load) > 0.7) rehash(buckets.size() + 1);
  }

  /// A node from the pool with a copy of v, in no chain.
  Bucket* new_Bucket(Value const& v) { return new_node(v); }

  /// The numbers of entries and of chains.
  std::size_t size() const { return count; }
  std::size_t bucket_count() const { return buckets.size(); }

  /// The first node of a chain, for looking at what the table holds. Requires: index is below
  /// bucket_count().
  Bucket const* chain(std::size_t index) const {
    assert(index < buckets.size());
    return buckets[index];
  }

 private:
  template <class... Parts>
  Bucket* new_node(Parts const&... parts) {
    void* const slot = pool.allocate();
    try {
      return ::new (slot) Bucket{nullptr, Value(parts...), 0};
    } catch (...) {
      pool.recycle(slot);
      throw;
    }
  }

  // A chain with more nodes gets an index.
  static constexpr std::size_t long_chain = 32;

  using Index = ChainIndex<Bucket>;

  /// Whether Hash has a finer hash of k, of which Eq is known to make no equal keys differ.
  template <class K>
  static constexpr bool has_fine_hash = requires(K const& k) {
    Hash::fine(k);
    requires std::same_as<typename Hash::FineFor, Hash>;
    requires std::same_as<typename Hash::FineFor, Eq>;
  };

  template <class StandIn>
  bool locate(StandIn const& k, std::uint64_t hash, std::size_t* index, Bucket** node) const {
    *index = hash % buckets.size();
    Bucket* const found = look_up(k, *index);
    if (found != nullptr) *node = found;
    return found != nullptr;
  }

  /// The first node of a chain with key k, or null.
  template <class StandIn>
  Bucket* look_up(StandIn const& k, std::size_t index) const {
    auto const is_it = [&k](Bucket const& node) { return Eq()(GetKey()(node.value), k); };
    if constexpr (has_fine_hash<StandIn>)
      if (has_index(index)) [[unlikely]]
        return indexes[index].find(Hash::fine(k), is_it);
    Bucket* node = buckets[index];
    while (node != nullptr && !is_it(*node)) node = node->next;
    return node;
  }

  bool has_index(std::size_t index) const { return !indexes.empty() && !indexes[index].is_empty(); }

  /// To be called with the chain of a new node, and with all chains after growth. The index has the
  /// nodes from the head on: of equal keys, which can meet when the table grows, a lookup finds the
  /// first. Without memory there is no index, and lookups walk the chain.
  void keep_index(std::size_t index) {
    if constexpr (has_fine_hash<Key>) {
      Bucket* const head = buckets[index];
      if (!has_index(index) && !is_longer(head, long_chain)) [[likely]]
        return;
      auto const fine = [](Bucket* node) { return Hash::fine(GetKey()(node->value)); };
      try {
        if (has_index(index)) return indexes[index].add(fine(head), head);
        if (indexes.empty()) indexes.resize(buckets.size());
        for (Bucket* node = head; node != nullptr; node = node->next)
          indexes[index].add(fine(node), node);
      } catch (std::bad_alloc const&) {
        if (!indexes.empty()) indexes[index] = Index();
      }
    }
  }

  static bool is_longer(Bucket const* node, std::size_t length) {
    for (; node != nullptr && length != 0; --length) node = node->next;
    return node != nullptr;
  }

  static void push(Bucket*& head, Bucket* node) {
    node->next = head;
    head = node;
  }

  iterator at(std::size_t index, Bucket* node) { return {&buckets, buckets.size(), index, node}; }

  ObjectPool<Bucket, false> pool;
  std::vector<Bucket*> buckets;
  std::uint64_t count = 0;
  std::vector<Index> indexes;  // by bucket, empty for short chains; none before the first long one
};

}  // namespace zelk::hsh
