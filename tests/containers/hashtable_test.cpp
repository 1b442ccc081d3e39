#include "zelk/containers/hashtable.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <functional>
#include <new>
#include <utility>
#include <vector>

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

TEST(Hashtable, GrowsBeforeTheAttemptThatFindsItOverloaded) {
  std::pair<unsigned, std::size_t> const steps[] = {{22, 73}, {52, 151}, {106, 313}, {220, 643}};
  for (int attempt = 0; attempt < 3; ++attempt) {
    Map map;
    for (auto const& [full, grown] : steps) {
      auto const before = map.bucket_count();
      for (auto k = static_cast<unsigned>(map.size()); k < full; ++k) map[k] = QNumber(k);
      map.find(0U);
      EXPECT_EQ(map.bucket_count(), before);
      std::size_t index;
      Map::Bucket* node;
      // The key is there already.
      EXPECT_FALSE(attempt == 0   ? map[0U] == QNumber(1)
                   : attempt == 1 ? map.insert({1, 9}).second
                                  : map.do_insert({2, 9}, &index, &node));
      EXPECT_EQ(map.bucket_count(), grown);
      EXPECT_EQ(map.size(), full);
    }
    for (unsigned k = 0; k < map.size(); ++k) EXPECT_EQ(map[k], QNumber(k));
  }
}

TEST(Hashtable, RehashesToTheNextPrime) {
  for (std::uint64_t const n : primes)
    EXPECT_NE(mpz_probab_prime_p(mpz_class(n).get_mpz_t(), 30), 0);
  Map map;
  for (auto const& [asked, given] : std::vector<std::pair<std::size_t, std::size_t>>{
           {0, 31}, {31, 31}, {32, 73}, {73, 73}, {151, 151}, {30, 151}, {1000, 1291}}) {
    map.rehash(asked);
    EXPECT_EQ(map.bucket_count(), given);
  }
}

std::vector<unsigned> keys(Map const& map, std::size_t bucket) {
  std::vector<unsigned> result;
  for (auto const* node = map.chain(bucket); node != nullptr; node = node->next)
    result.push_back(node->value.first);
  return result;
}

TEST(Hashtable, ChainsTheNewestFirstAndReversesWhatGrowthKeepsTogether) {
  Map map;
  // All belong in bucket 5 of 73; of 31 in buckets 5, 27, 16, 5 and 5.
  for (unsigned const k : {5U, 151U, 78U, 5U + 31U * 73U, 5U + 2U * 31U * 73U}) map[k];
  EXPECT_EQ(keys(map, 5), (std::vector<unsigned>{4531, 2268, 5}));
  for (std::size_t const n : {32U, 31U, 32U, 73U}) map.rehash(n);  // grows once
  EXPECT_EQ(keys(map, 5), (std::vector<unsigned>{151, 78, 5, 2268, 4531}));
}

TEST(Hashtable, LooksUpAnEmptyTableWithoutHashing) {
  Map map;
  CountingHash::calls = 0;
  EXPECT_EQ(map.find(3U), map.end());
  EXPECT_EQ(CountingHash::calls, 0);
  EXPECT_EQ(map[3U], QNumber(0));
  EXPECT_NE(map.find(3U), map.end());
  EXPECT_EQ(map.find(34U), map.end());
}

/// Can refuse to be copied.
struct Fragile {
  static inline bool refuses = false;
  Fragile() = default;
  Fragile(Fragile const& /*other*/) {
    if (refuses) throw std::bad_alloc();
  }
  Fragile& operator=(Fragile const&) = default;
};

TEST(Hashtable, GivesTheSlotBackWhenTheCopyFails) {
  HashMap<unsigned, Fragile, CountingHash, std::equal_to<>> map;
  std::pair<unsigned, Fragile> const entries[] = {{1, {}}, {2, {}}};
  auto const* const first = map.insert(entries[0]).first.node;
  Fragile::refuses = true;
  EXPECT_THROW(map.insert(entries[1]), std::bad_alloc);
  Fragile::refuses = false;
  EXPECT_EQ(map.size(), 1U);
  EXPECT_EQ(map.find(2U), map.end());
  EXPECT_EQ(map.insert(entries[1]).first.node, first + 1);
}

}  // namespace
}  // namespace zelk::hsh
