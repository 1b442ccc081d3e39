#pragma once

#include <cstddef>

namespace zelk::hsh {

/// A table to look at: its entries, its chains, and lookups that change nothing.
///
/// A view holds a reference to the table, sees what is added to it later, and must not outlive it.
template <class Table>
class TableView {
 public:
  using Bucket = typename Table::Bucket;

  /// The result of a lookup; `node` is null at the end.
  struct iterator {
    /// The entry's node.
    Bucket const* node;

    /// Whether both have the same node, or both none.
    friend bool operator==(iterator const& a, iterator const& b) { return a.node == b.node; }
  };

  TableView(Table const& shown) : table(shown) {}

  /// What a lookup returns that finds nothing.
  iterator end() const { return {nullptr}; }

  /// The entry with key k, or the end. An empty table answers without hashing.
  iterator find(typename Table::key_type const& k) const { return {table.node_of(k)}; }

  /// As those of the table.
  std::size_t size() const { return table.size(); }
  std::size_t bucket_count() const { return table.bucket_count(); }
  Bucket const* chain(std::size_t index) const { return table.chain(index); }

  /// The table itself, for what takes one.
  operator Table const&() const { return table; }

 private:
  Table const& table;
};

}  // namespace zelk::hsh
