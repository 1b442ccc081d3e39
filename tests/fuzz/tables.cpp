#include <functional>
#include <vector>

#include "tests/fuzz/body.h"
#include "tests/support/plain_table.h"
#include "tests/support/random_number.h"
#include "zelk/containers/hash_map.h"
#include "zelk/containers/hasher.h"

namespace zelk::test {

/// A table beside a plain one. Equal keys in different forms may hash differently, so that a value
/// may have several entries, which can meet in one chain.
void run_tables(Bytes bytes) {
  ByteReader next{bytes};
  hsh::HashMap<QNumber, unsigned, Hasher<QNumber>, std::equal_to<QNumber>> table;
  plain::Table<QNumber, Hasher<QNumber>> plain;
  auto const insert = [&](QNumber const& k, unsigned value, unsigned how) {
    auto const size = plain.count;
    auto& known = plain.add({k, how == 0 ? 0 : value}).second;
    bool const is_new = plain.count != size;
    if (how == 0)
      CHECK(table[k] == known);
    else if (how == 1)
      CHECK(table.insert({k, value}).second == is_new);
    else
      CHECK(table.store(k, value) == (known = value));
  };
  std::vector<mpq_class> used = {0};
  while (!next.done()) {
    unsigned const op = next();
    if (op / 2 % 2 == 0) used.push_back(corner_rational(next));
    QNumber const k = to_number(used[next() % used.size()], op % 2 == 0);
    unsigned const value = next();
    auto const* const known = plain.find(k);
    auto const found = table.find(k);
    CHECK((found == table.end()) == (known == nullptr));
    CHECK(known == nullptr || found.node->value.second == known->second);
    if (op < 240) {
      insert(k, value, op / 4 % 3);
    } else if (op < 252) {  // neighbours, so that the table grows
      for (unsigned i = 0; i < 32 && plain.count < 400; ++i) insert(k + QNumber(i), i, i % 3);
    } else {
      table.rehash(8 * value);
      plain.rehash(8 * value);
    }
  }
  CHECK(plain.agrees(table, [](auto const& a, auto const& b) {
    return a == b && a.first.is_big() == b.first.is_big();
  }));
}

}  // namespace zelk::test
