#include "zelk/numbers/gcd_cache.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <random>
#include <set>
#include <utility>
#include <vector>

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

/// The table that operations on words leave, by the definition.
struct Plain {
  __extension__ using Wide = __int128;
  static constexpr long row = gcd_cache_limit + 1;

  long descend(long a, long b) {
    for (a = std::labs(a), b = std::labs(b); b != 0; a = std::exchange(b, a % b)) {
      if (std::max(a, b) > gcd_cache_limit) continue;
      if (at(a, b) != 0) return at(a, b);
      at(a, b) = at(b, a) = std::gcd(a, b);
    }
    return a;
  }
  void operate(char op, long an, long ad, long bn, long bd) {
    if (op == '/') descend(bd, bn), std::swap(bn, bd), bd = std::labs(bd);
    bool const decided = op == '<' && (an < 0 ? bn >= 0 : bn <= 0);
    if (decided || (ad == 1 && bd == 1)) return;
    if (op == '<') descend(an, bn), descend(bd, ad);
    if (op == '*' || op == '/') descend(an, bd), descend(bn, ad);
    if (op != '+') return;
    long const g = descend(ad, bd);
    auto const fits = [](Wide n) { return -LONG_MAX <= n && n <= LONG_MAX; };
    Wide const x = Wide(an) * (bd / g), y = Wide(bn) * (ad / g);
    if (fits(x) && fits(y) && fits(x + y)) descend(static_cast<long>(x + y), g);
  }

  long& at(long a, long b) { return table[static_cast<std::size_t>(a * row + b)]; }

  std::vector<long> table = std::vector<long>(row * row);
};

TEST(GcdCache, GainsWhatPlainDescentsDo) {
  std::mt19937_64 random(7);
  auto const word = [&] { return static_cast<long>(random() >> (1 + random() % 63)); };
  auto const number = [&] { return QNumber(random() % 2 == 0 ? word() : -word(), word() | 1); };
  for (int round = 0; round < 9; ++round) {
    std::vector<std::pair<QNumber, QNumber>> operands(64UL << 2 * (round / 3));
    for (auto& [a, b] : operands) a = number(), b = random() % 8 == 0 ? a : number();
    operands[0] = {{70001, 30011}, {50021, 90001}};
    // From an empty table; from one that lacks only pairs of equals; from one cleared after that.
    std::memset(gcd_cache, 0, sizeof gcd_cache);
    if (round % 3 != 0) {
      for (long b = 1; b <= gcd_cache_limit; ++b)
        for (long a = 1; a < b; ++a) gcd_cache[a][b] = gcd_cache[b][a] = std::gcd(a, b);
      gcd_cache[3][5] = gcd_cache[5][3] = 0;
      EXPECT_EQ(QNumber(10, 6), QNumber(5, 3));
      EXPECT_TRUE(detail::is_table_complete());
    }
    if (round % 3 == 2) std::memset(gcd_cache, 0, sizeof gcd_cache);
    Plain plain;
    std::copy_n(&gcd_cache[0][0], plain.table.size(), plain.table.begin());
    for (auto const& [a, b] : operands) {
      char const op = "<+*/"[&a == &operands[0].first || b.is_zero() ? 0 : random() % 4];
      op == '<' ? void(a < b) : op == '+' ? void(a + b) : op == '*' ? void(a * b) : void(a / b);
      plain.operate(op, a.small_numerator(), a.small_denominator(), b.small_numerator(),
                    b.small_denominator());
    }
    ASSERT_EQ(std::memcmp(plain.table.data(), gcd_cache, sizeof gcd_cache), 0) << round;
  }
}

TEST(GcdCache, IsFilledByRequest) {
  fill_gcd_cache();
  for (long a = 0; a <= gcd_cache_limit; ++a)
    for (long b = 0; b <= gcd_cache_limit; ++b) ASSERT_EQ(gcd_cache[a][b], std::gcd(a, b));
  EXPECT_TRUE(detail::is_table_complete());
}

}  // namespace
}  // namespace zelk
