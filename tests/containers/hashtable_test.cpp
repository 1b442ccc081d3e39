#include "zelk/containers/hashtable.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "tests/support/plain_table.h"
#include "tests/support/text_form.h"
#include "zelk/containers/hash_map.h"
#include "zelk/containers/hasher.h"

namespace zelk::hsh {
namespace {

using test::number;

TEST(Hasher, HashesSmallAndShortBigNumbersByValueOthersByLimbs) {
  std::pair<char const*, std::uint64_t> const table[] = {
      {"1/2", 4294967300},
      {"1/2B", 4294967300},
      {"-1/3", 5},  // all bits of the rotated -1, and 2 * 3
      {"-1/3B", 5},
      {"0B", 2},
      {"4294967296", 3},
      {"2147483647B", 0x7fffffff00000002},
      {"-2147483648B", 0x8000000100000001},
      // One limb each: h = n, then h ^ (64h + h / 4 + d).
      {"2147483648B", 0x80000000 ^ 0x2020000001},
      {"-2147483649B", 0x80000001 ^ 0x2020000041},
      {"1/2147483648B", 1 ^ 0x80000040},
      {"18446744073709551621/2", 21332},
      {"-18446744073709551621/2", 21332},
  };
  for (auto const& [q, hash] : table) EXPECT_EQ(Hasher<QNumber>()(number(q)), hash) << q;
}

TEST(Hasher, HashesAndComparesPairs) {
  pair_hash_eq const pair;
  EXPECT_EQ(pair({QNumber(1, 2), 3}), 17179869187U);
  EXPECT_EQ(pair({QNumber(5), 3}), 8589934595U);
  EXPECT_EQ(pair({QNumber(0), UINT_MAX}), 0x2ffffffffU);
  EXPECT_TRUE(pair({QNumber(1, 2), 3}, {number("1/2B"), 3}));
  EXPECT_FALSE(pair({QNumber(1, 2), 3}, {QNumber(1, 2), 4}));
  EXPECT_FALSE(pair({QNumber(1, 2), 3}, {QNumber(1, 3), 3}));
}

struct CountingHash {
  static inline int calls = 0;
  std::uint64_t operator()(unsigned key) const { return ++calls, key; }
};

using Map = HashMap<unsigned, QNumber, CountingHash, std::equal_to<>>;

TEST(Hashtable, RehashesToTheNextPrime) {
  std::uint64_t digest = 0;  // of all in their order
  for (std::uint64_t const n : primes) {
    EXPECT_NE(mpz_probab_prime_p(mpz_class(n).get_mpz_t(), 30), 0);
    digest = (31 * digest + n) % 4294967291;
  }
  EXPECT_EQ(digest, 3373671189U);
  Map map;
  for (auto const& [asked, given] : std::vector<std::pair<std::size_t, std::size_t>>{
           {0, 31}, {31, 31}, {32, 73}, {73, 73}, {151, 151}, {30, 151}, {1000, 1291}}) {
    map.rehash(asked);
    EXPECT_EQ(map.bucket_count(), given);
  }
}

TEST(Hashtable, TellsWhereAnEntryIsByOneHash) {
  Map map;
  CountingHash::calls = 0;
  EXPECT_EQ(map.find(3U), map.end());
  EXPECT_EQ(CountingHash::calls, 0);  // of an empty table
  auto const [added, is_new] = map.insert({34, 7});
  auto const known = map.insert({34, 8}).first, found = map.find(34U), absent = map.find(65U);
  map.rehash(32);
  EXPECT_EQ(CountingHash::calls, 4);
  EXPECT_TRUE(is_new && added == known && added == found && !(added == absent));
  for (auto const& it : {added, known, found, absent, map.end()}) {
    EXPECT_EQ(it.table_buckets->at(34), map.chain(34));
    EXPECT_EQ(it.node, it == found ? map.chain(34) : nullptr);
    EXPECT_EQ(it.bucket_count, it == absent && it.index == 73 ? 73 : 31);
    EXPECT_EQ(it.index, it == found ? 3 : it.bucket_count);
  }
  std::size_t index = 0;
  Map::Bucket other{}, *node = &other;
  EXPECT_FALSE(map.do_find(65U, &index, &node));
  EXPECT_TRUE(index == 65 && node == &other);  // nothing to tell
  EXPECT_TRUE(map.do_find(34U, &index, &node) && index == 34 && node == added.node);
  EXPECT_FALSE(map.do_insert({34, 9}, &index, &node));
  EXPECT_TRUE(index == 34 && node == added.node && node->value.second == QNumber(7));
  EXPECT_TRUE(map.store(34U, QNumber(9)) == QNumber(9) && map[34U] == QNumber(9));

  // At the limit of the load an attempt makes room, also one for what is there.
  for (bool const is_stored : {false, true}) {
    Map full;
    for (unsigned k = 13; k < 35; ++k) full[k] = k;
    EXPECT_EQ(full.bucket_count(), 31U);
    is_stored ? void(full.store(34U, 0)) : void(full.do_insert({34, 0}, &index, &node));
    EXPECT_TRUE(full.bucket_count() == 73 && full.size() == 22 && index == 34);
  }
}

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
