#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "tests/support/plain_table.h"
#include "tests/support/text_form.h"
#include "zelk/containers/hash_map.h"
#include "zelk/containers/hasher.h"

namespace zelk::hsh {
namespace {

using Key = std::pair<QNumber, unsigned>;

/// The library's, and how often it is asked.
struct Counting : pair_hash_eq {
  using FineFor = Counting;
  static inline std::size_t comparisons = 0;
  using pair_hash_eq::operator();
  bool operator()(Key const& a, Key const& b) const {
    return ++comparisons, pair_hash_eq::operator()(a, b);
  }
};

TEST(LongChain, FindsWhatAWalkFromTheHeadFinds) {
  HashMap<Key, unsigned, Counting, Counting> map;
  plain::Table<Key, pair_hash_eq> plain;
  std::size_t longest = 0, meetings = 0;
  for (unsigned i = 0; i < 1500; ++i) {
    // A grid: one chain at each precision, whatever the number of chains. Each number comes in big
    // form first, which hashes elsewhere: when the table grows, the two can meet in one chain.
    QNumber const x = QNumber((1L << 40) + i, 1000003);
    for (QNumber const& q : {test::in_big_form(x), x})
      for (unsigned const prec : {3U, 3U + i % 2})
        map[{q, prec}] = plain.add({{q, prec}, 0}).second = i;
    if (i % 100 != 99) continue;
    ASSERT_TRUE(plain.agrees(map, [](auto const& a, auto const& b) {
      return test::show(a.first) == test::show(b.first) && a.second == b.second;
    }));
    for (auto const& chain : plain.chains) {
      longest = std::max(longest, chain.size());
      for (auto const& [key, value] : chain) {
        // The first of equal keys, and nothing that is not there, by a few comparisons.
        auto const* const first = plain.find(key);
        meetings += &first->first != &key;
        auto const before = Counting::comparisons;
        ASSERT_EQ(map.find(key).node->value.first.first.is_big(), first->first.first.is_big());
        ASSERT_EQ(map.find({key.first, key.second + 2}), map.end());
        ASSERT_LT(Counting::comparisons - before, 66U);
      }
    }
  }
  EXPECT_GT(longest, 1000U);
  EXPECT_GT(meetings, 0U);
}

}  // namespace
}  // namespace zelk::hsh
