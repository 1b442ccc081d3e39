#include <algorithm>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "tests/fuzz/body.h"
#include "tests/support/random_number.h"
#include "zelk/containers/hash_map.h"
#include "zelk/containers/hasher.h"

namespace zelk::test {
namespace {

using Table = hsh::HashMap<QNumber, unsigned, Hasher<QNumber>, std::equal_to<QNumber>>;

/// A table beside what it should hold. Equal keys in different forms may hash differently, so a
/// value may have several nodes; a key reaches those that share its bucket.
struct CheckedTable {
  Table table;
  std::size_t buckets = 31;
  std::unordered_map<std::string, std::vector<Table::Bucket const*>> nodes;
  std::unordered_map<Table::Bucket const*, unsigned> mapped;

  std::size_t bucket_of(QNumber const& k) const { return Hasher<QNumber>()(k) % buckets; }

  void rehash(std::size_t n) {
    table.rehash(n);
    grow(n);
  }

  void grow(std::size_t n) {
    while (buckets < n) buckets = *std::ranges::upper_bound(hsh::primes, buckets);
  }

  auto reachable(QNumber const& k) {
    auto found = nodes[to_rational(k).get_str()];
    std::erase_if(found, [&](auto node) { return bucket_of(node->value.first) != bucket_of(k); });
    return found;
  }

  void find(QNumber const& k) {
    auto const known = reachable(k);
    auto const entry = table.find(k);
    CHECK((entry == table.end()) == known.empty());
    CHECK(known.empty() || std::ranges::count(known, entry.node) == 1);
  }

  void insert(QNumber const& k, unsigned value, unsigned how) {
    if (10 * mapped.size() > 7 * buckets) grow(buckets + 1);
    auto const known = reachable(k);
    auto const size = table.size();
    Table::Bucket const* node = nullptr;
    if (how == 0) {
      auto const [entry, added] = table.insert({k, value});
      CHECK(added == known.empty() && entry.index == bucket_of(k));
      node = entry.node;
    } else {
      unsigned& found = how == 1 ? table[k] : table.store(k, value);
      node = table.find(k).node;
      CHECK(&found == &node->value.second);
      CHECK(found == (how == 2 ? value : known.empty() ? 0 : mapped.at(node)));
      if (known.empty())
        found = value;
      else
        mapped.at(node) = found;
    }
    CHECK(table.bucket_count() == buckets && table.size() == size + known.empty());
    if (known.empty()) {
      CHECK(table.chain(bucket_of(k)) == node && mapped.emplace(node, value).second);
      CHECK(node->value.first == k && node->value.first.is_big() == k.is_big());
      nodes[to_rational(k).get_str()].push_back(node);
    }
    CHECK(known.empty() || std::ranges::count(known, node) == 1);
    CHECK(node->value.second == mapped.at(node));
  }

  void check_chains() const {
    CHECK(table.bucket_count() == buckets);
    std::size_t seen = 0;
    for (std::size_t i = 0; i < buckets; ++i) {
      for (auto const* node = table.chain(i); node != nullptr; node = node->next, ++seen)
        CHECK(bucket_of(node->value.first) == i && mapped.at(node) == node->value.second);
    }
    CHECK(seen == mapped.size());
  }
};

}  // namespace

void run_tables(Bytes bytes) {
  ByteReader next{bytes};
  CheckedTable table;
  std::vector<mpq_class> used = {0};
  while (!next.done()) {
    unsigned const op = next();
    if (op / 2 % 2 == 0) used.push_back(corner_rational(next));
    QNumber const k = to_number(used[next() % used.size()], op % 2 == 0);
    unsigned const value = next();
    table.find(k);
    if (op < 240) {
      table.insert(k, value, op / 4 % 3);
    } else if (op < 252) {  // neighbours, so that the table grows
      for (unsigned i = 0; i < 32 && table.mapped.size() < 400; ++i)
        table.insert(k + QNumber(i), i, i % 3);
    } else {
      table.rehash(8 * value);
    }
  }
  table.check_chains();
}

}  // namespace zelk::test
