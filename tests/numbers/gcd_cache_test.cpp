#include "zelk/numbers/gcd_cache.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <numeric>
#include <set>
#include <utility>

#include "zelk/numbers/q_number.h"

namespace zelk {
namespace {

// Mirror images go without saying: the lesser stands first.
using Pairs = std::set<std::pair<long, long>>;

template <class Act>
Pairs gained(Act act) {
  act();
  Pairs pairs;
  for (long a = 0; a <= gcd_cache_limit; ++a) {
    for (long b = 0; b <= gcd_cache_limit; ++b) {
      if (gcd_cache[a][b] == 0) continue;
      EXPECT_EQ(gcd_cache[a][b], std::gcd(a, b));
      EXPECT_EQ(gcd_cache[b][a], gcd_cache[a][b]);
      pairs.insert(std::minmax(a, b));
    }
  }
  std::memset(gcd_cache, 0, sizeof gcd_cache);
  return pairs;
}

TEST(GcdCache, GainsThePairsThatEuclidVisits) {
  std::memset(gcd_cache, 0, sizeof gcd_cache);
  EXPECT_EQ(gained([] { QNumber(12, 18); }), (Pairs{{12, 18}}));
  EXPECT_EQ(gained([] { QNumber(5, -3); }), (Pairs{{3, 5}, {2, 3}, {1, 2}}));
  EXPECT_EQ(gained([] { QNumber(7, 1); }), (Pairs{{1, 7}}));
  EXPECT_EQ(gained([] { QNumber(7), QNumber(0, -7), QNumber(LONG_MIN, 6); }), Pairs());
  EXPECT_EQ(gained([] { QNumber(2048, 1000); }), (Pairs{{48, 1000}, {40, 48}, {8, 40}}));
  EXPECT_EQ(gained([] { QNumber(3000, 2000), QNumber(1024, 2); }), Pairs());
  EXPECT_EQ(gained([] { QNumber(1023, 1024); }), (Pairs{{1, 1023}}));
  // It stops at the first pair that is known.
  EXPECT_EQ(gained([] { gcd_cache[2][3] = gcd_cache[3][2] = 1, QNumber(5, 3); }),
            (Pairs{{3, 5}, {2, 3}}));
}

TEST(GcdCache, GainsWhatEachOperationCancelsBy) {
  QNumber const half(1, 2), third(1, 3), two_thirds(2, 3), three_quarters(3, 4);
  QNumber const zero, two(2), three(3), huge(LONG_MAX, 3), nearly(LONG_MAX - 1, 5);
  QNumber seven_thirds(7, 3);
  std::memset(gcd_cache, 0, sizeof gcd_cache);
  EXPECT_EQ(gained([&] { return two + three * two; }), Pairs());
  EXPECT_EQ(gained([&] { return two_thirds / half; }), (Pairs{{1, 2}, {2, 3}}));
  EXPECT_EQ(gained([&] { return half + three_quarters; }), (Pairs{{2, 4}, {2, 5}, {1, 2}}));
  EXPECT_EQ(gained([&] { return third - third; }), (Pairs{{3, 3}, {0, 3}}));
  EXPECT_EQ(gained([&] { return two_thirds * three_quarters; }), (Pairs{{2, 4}, {3, 3}}));
  EXPECT_EQ(gained([&] { return abs(two_thirds); }), (Pairs{{2, 3}}));
  EXPECT_EQ(gained([&] { return two < three || half < zero || half == third; }), Pairs());
  EXPECT_EQ(gained([&] { return third < half; }), (Pairs{{1, 1}, {2, 3}}));
  EXPECT_EQ(gained([&] { return huge < nearly; }), (Pairs{{3, 5}, {2, 3}, {1, 2}}));
  EXPECT_EQ(gained([&] { return two_thirds.inv(); }), (Pairs{{2, 3}, {1, 2}}));
  EXPECT_EQ(gained([&] { return seven_thirds.self_decompose(); }), (Pairs{{1, 3}}));
  EXPECT_EQ(gained([&] { return half + third; }), (Pairs{{2, 3}, {1, 5}}));
  EXPECT_EQ(gained([&] { return third < two_thirds; }), (Pairs{{1, 2}, {3, 3}}));
}

}  // namespace
}  // namespace zelk
