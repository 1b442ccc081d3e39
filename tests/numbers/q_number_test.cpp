#include "zelk/numbers/q_number.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <concepts>
#include <functional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/text_form.h"
#include "zelk/numbers/functions.h"
#include "zelk/numbers/hash.h"

namespace zelk {
namespace {

using test::number;
using test::show;

// Made before main, by way of the scratch integers.
QNumber const early = QNumber(LONG_MIN, 6) + QNumber(1, 3);

static_assert(!std::is_constructible_v<QNumber, double>);
static_assert(!std::is_constructible_v<QNumber, __int128_t>);
static_assert(!std::is_constructible_v<QNumber, unsigned long, double>);
static_assert(std::is_constructible_v<QNumber, unsigned>);
enum Wide : unsigned long {};
enum Narrow : short {};
static_assert(!std::is_constructible_v<QNumber, Wide>);
static_assert(!std::is_constructible_v<QNumber, long, Wide>);
static_assert(std::is_constructible_v<QNumber, Narrow>);
static_assert(std::is_nothrow_move_constructible_v<QNumber>);
static_assert(std::is_nothrow_move_assignable_v<QNumber>);
static_assert(std::is_nothrow_swappable_v<QNumber>);
static_assert(std::totally_ordered<QNumber>);

// A number in big form ends in B.
TEST(QNumber, IsMadeInItsForm) {
  std::pair<std::vector<QNumber>, char const*> const table[] = {
      {{early, {6, -4}, {0, -7}, QNumber(-2, 3).inv()}, "-1537228672809129301B -3/2 0 -3/2 "},
      {{-LONG_MAX, LONG_MIN}, "-9223372036854775807 -9223372036854775808B "},
      {{{LONG_MIN, 2}, {5, LONG_MIN}}, "-4611686018427387904B -5/9223372036854775808B "},
      {{{0, LONG_MIN}, {LONG_MIN, LONG_MIN}}, "0B 1B "},
      {{number("1/9223372036854775808").inv(), abs(QNumber(LONG_MIN)), -QNumber(LONG_MIN)},
       "9223372036854775808B 9223372036854775808B 9223372036854775808B "},
      {{abs(QNumber(-5, 3)), -QNumber(2, 3)}, "5/3 -2/3 "},
      {{1UL << 63, ULONG_MAX, 1UL}, "9223372036854775808B 18446744073709551615B 1 "},
      {{{6UL, 4UL}, {-6, 4UL}, {6UL, -4L}}, "3/2 -3/2 -3/2 "},
      {{{1UL << 63, -4}, {LONG_MIN, 1UL << 63}, {0UL, 1UL << 63}}, "-2305843009213693952B -1B 0B "},
      {{number("3/4B").to_small(), number("-9223372036854775808B").to_small()},
       "3/4 -9223372036854775808B "},
      {{numerator(number("-3/4B")), denominator(number("1/18446744073709551616"))},
       "-3 18446744073709551616B "},
  };
  for (auto const& [results, expected] : table) {
    std::string shown;
    for (QNumber const& result : results) {
      shown += show(result) + ' ';
      EXPECT_TRUE(result.is_canonical());
    }
    EXPECT_EQ(shown, expected);
  }
  for (auto const& [n, d] : {std::pair(2, 4), std::pair(1, -2)}) {
    mpz_class const above = n, below = d;
    QNumber::LowestTerms const wrong{above.get_mpz_t(), below.get_mpz_t()};
    EXPECT_DEBUG_DEATH(EXPECT_FALSE(QNumber(wrong).is_canonical()), "is_canonical");
  }
}

TEST(QNumber, RoundsAndRaisesByValue) {
  // A number, its floor, ceiling and nearest integer; then a number, an exponent and the power.
  std::istringstream rounded(R"(
      5/2 2 3 3   -5/2 -3 -2 -3   7/3 2 3 2   -7/3 -3 -2 -2   5/3 1 2 2   4 4 4 4   0 0 0 0   1/2 0 1 1
      9223372036854775807/2 4611686018427387903 4611686018427387904 4611686018427387904
      -18446744073709551617/2 -9223372036854775809B -9223372036854775808B -9223372036854775809B
  )");
  for (std::string q, down, up, near; rounded >> q >> down >> up >> near;)
    for (QNumber const& x : {number(q), test::in_big_form(number(q))}) {
      EXPECT_EQ(show(floor(x)), down);
      EXPECT_EQ(show(ceil(x)), up);
      EXPECT_EQ(show(round(x)), near);
    }
  std::istringstream raised(R"(
      -2/3 3 -8/27   -2/3 -3 -27/8   2/3 0 1   0 0 1   0 5 0   7 1 7
      2 62 4611686018427387904   2 63 9223372036854775808B   -1/2 -63 -9223372036854775808B
  )");
  std::string q, power;
  for (long exponent; raised >> q >> exponent >> power;)
    for (QNumber const& x : {number(q), test::in_big_form(number(q))})
      EXPECT_EQ(show(pow(x, exponent)), power);
}

TEST(QNumber, HashesByValue) {
  std::set<std::size_t> hashes;
  auto const all = test::numbers(
      "0 1 -1 1/2 2 -2 4294967296 1/4294967296 3037000500/7 9223372036854775807 "
      "9223372036854775808 18446744073709551616 18446744073709551616/3 3/18446744073709551616 "
      "-9223372036854775808");
  for (QNumber const& q : all) {
    std::hash<QNumber> const hash;
    EXPECT_EQ(hash(q), hash(test::in_big_form(q))) << show(q);
    hashes.insert(hash(q) % 4096);
  }
  EXPECT_EQ(hashes.size(), all.size());
}

TEST(QNumber, MovesAsItCopies) {
  for (std::string const source : {"2/3", "3/4B", "18446744073709551616"})
    for (std::string const target : {"5", "5B", "-7/18446744073709551616"}) {
      QNumber from = number(source), copied = number(target), moved = copied;
      copied = from;
      moved = std::move(from);
      EXPECT_EQ(show(moved), show(copied)) << source << " to " << target;
      EXPECT_EQ(show(from), "0");  // NOLINT(bugprone-use-after-move)
      QNumber const made = std::move(moved);
      EXPECT_EQ(show(made), show(copied));
      EXPECT_EQ(show(moved), "0");  // NOLINT(bugprone-use-after-move)
      QNumber a = number(source), b = number(target);
      swap(a, b);
      EXPECT_EQ(show(a) + ' ' + show(b), show(number(target)) + ' ' + show(number(source)));
      QNumber& same = a;
      a = std::move(same);
      EXPECT_EQ(show(a), show(number(target)));
    }
}

TEST(QNumber, OrdersByLessAndEqual) {
  std::vector<QNumber> q = test::numbers("3/2 1/2B -1 18446744073709551616 1/3 1/2");
  std::ranges::sort(q, std::greater<>());
  for (std::size_t i = 0; i + 1 < q.size(); ++i) {
    bool const equal = i == 2;  // both halves
    EXPECT_TRUE(q[i] >= q[i + 1] && (q[i + 1] >= q[i]) == equal);
    EXPECT_TRUE(q[i + 1] <= q[i] && (q[i] <= q[i + 1]) == equal);
    EXPECT_TRUE((q[i] > q[i + 1]) != equal && !(q[i] < q[i + 1]));
  }
}

TEST(QNumber, RefusesToDivideByZeroBeforeItWrites) {
  mpz_class const one = 1, nothing = 0;
  QNumber const zeros[] = {QNumber(), number("0B")};
  EXPECT_THROW(QNumber(1, 0), std::domain_error);
  EXPECT_THROW(QNumber(LONG_MIN, 0), std::domain_error);
  EXPECT_THROW(QNumber(0, 0), std::domain_error);
  EXPECT_THROW(QNumber(1UL, 0UL), std::domain_error);
  EXPECT_THROW(QNumber(ULONG_MAX, 0), std::domain_error);
  for (auto const make : {QNumber::from_mpz, QNumber::big_from_mpz})
    EXPECT_THROW(make(one.get_mpz_t(), nothing.get_mpz_t()), std::domain_error);
  QNumber::LowestTerms const infinite{one.get_mpz_t(), nothing.get_mpz_t()};
  EXPECT_THROW(QNumber{infinite}, std::domain_error);
  EXPECT_THROW(QNumber::from_lowest_terms(infinite), std::domain_error);
  for (QNumber const& zero : zeros) {
    EXPECT_THROW((void)zero.inv(), std::domain_error);
    EXPECT_THROW((void)pow(zero, -1), std::domain_error);
    for (std::string const text : {"2/3", "2/3B", "0", "0B"}) {
      QNumber q = number(text);
      EXPECT_THROW(q / zero, std::domain_error);
      EXPECT_THROW(q /= zero, std::domain_error);
      EXPECT_THROW(text[0] == '0' ? q /= q : q /= zero, std::domain_error);
      EXPECT_EQ(show(q), text);
    }
  }
}

TEST(QNumber, ComputesValueAndForm) {
  // 2^63 - 1 = 14197294936951 * 649657; its square root lies between 3037000499 and 3037000500.
  std::istringstream equations(R"(
      1/2 + 1/2 is 1   1/6 + 1/3 is 1/2   1/2 - 1/2 is 0   1 + 1/2B is 3/2B
      9223372036854775807 + 1 is 9223372036854775808B   9223372036854775807 - -1 is 9223372036854775808B
      -9223372036854775807 + -1 is -9223372036854775808B   -9223372036854775807 - 1 is -9223372036854775808B
      -1 - 9223372036854775807 is -9223372036854775808B   0 - 9223372036854775807 is -9223372036854775807
      9223372036854775807/2 + -9223372036854775805/2 is 1
      9223372036854775807/2 + 1/2 is 4611686018427387904B
      9223372036854775807/2 - 1/3 is 27670116110564327419/6B
      1/2 - 9223372036854775807/3 is -18446744073709551611/6B
      1/14197294936951 + 1/649657 is 14197295586608/9223372036854775807
      1/3037000500 - 1/3037000501 is 1/9223372040037250500B
      14197294936951 * -649657 is -9223372036854775807   3037000499 * 3037000499 is 9223372030926249001
      3037000500 * 3037000500 is 9223372037000250000B   -4294967296 * 2147483648 is -9223372036854775808B
      1/4294967296 * 1/2147483648 is 1/9223372036854775808B
      9223372036854775807/2 * 2/9223372036854775807 is 1   1/2 / -3/4 is -2/3   1 / -2B is -1/2B
      2/3 / 2/3 is 1   -2/3B / -2/3B is 1B   3/4B * 0 is 0   3B * 0 is 0B   3/4B * 0B is 0B   0 * 3/4B is 0B
      7/2B + 7/2B is 7B   7/2B - 7/2B is 0B   -2/3B * -2/3B is 4/9B   3/4B = 1/2 is 1/2B   1/2 = 3/4B is 3/4B
      3/4B = 3/4B is 3/4B   3/4 = 3/4 is 3/4
  )");
  for (std::string a, op, b, is, result; equations >> a >> op >> b >> is >> result;) {
    QNumber x = number(a);
    QNumber const other = number(b);
    // Where the operands read the same, they are the same object.
    QNumber const& y = a == b ? x : other;
    op == "+" ? x += y : op == "-" ? x -= y : op == "*" ? x *= y : op == "/" ? x /= y : x = y;
    EXPECT_EQ(show(x), result) << a << op << b;
    EXPECT_TRUE(x.is_canonical());
    EXPECT_EQ(show(other), b);
  }
}

}  // namespace
}  // namespace zelk
