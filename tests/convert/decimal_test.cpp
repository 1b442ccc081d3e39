#include "zelk/convert/decimal.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/support/random_number.h"
#include "zelk/convert/text.h"

namespace zelk::convert {
namespace {

mpz_class power_of_ten(unsigned places) {
  mpz_class power;
  mpz_ui_pow_ui(power.get_mpz_t(), 10, places);
  return power;
}

/// What a decimal says, read by GMP. Fails unless it has the form that was promised.
mpq_class read(std::string const& text, unsigned places) {
  bool const negative = text.starts_with('-');
  std::string digits = text.substr(negative ? 1 : 0);
  auto const whole = digits.size() - (places == 0 ? 0 : places + 1);
  if (places > 0) {
    EXPECT_EQ(digits.find('.'), whole) << text;
    digits.erase(whole, 1);
  }
  EXPECT_EQ(digits.find_first_not_of("0123456789"), std::string::npos) << text;
  EXPECT_TRUE(whole == 1 || digits[0] != '0') << text;
  mpz_class n(digits, 10);
  EXPECT_FALSE(negative && n == 0) << text;
  if (negative) n = -n;
  mpq_class value(n, power_of_ten(places));
  value.canonicalize();
  return value;
}

TEST(Decimal, RoundsToTheDirectionOrTheEvenNeighbour) {
  // Number, places, and the number rounded down, up and to the nearest.
  std::istringstream table(R"(
      0 0 0 0 0                 12 2 12.00 12.00 12.00       2/3 2 0.66 0.67 0.67
      -1/300 2 -0.01 0.00 0.00  -1/3 0 -1 0 0                1/2 0 0 1 0
      5/2 0 2 3 2               -3/2 0 -2 -1 -2              0.375 2 0.37 0.38 0.38
      -0.125 2 -0.13 -0.12 -0.12                             999/1000 2 0.99 1.00 1.00
      -99.95 1 -100.0 -99.9 -100.0                           1/1024 3 0.000 0.001 0.001
  )");
  std::string number, down, up, nearest;
  for (unsigned places; table >> number >> places >> down >> up >> nearest;) {
    QNumber const q = parse_rational(number);
    EXPECT_EQ(to_decimal(q, places, Rounding::down), down) << number;
    EXPECT_EQ(to_decimal(q, places, Rounding::up), up) << number;
    EXPECT_EQ(to_decimal(q, places, Rounding::nearest), nearest) << number;
  }
}

TEST(Decimal, PrintsEnclosuresOutwardAndMarksExactEnds) {
  struct {
    char const* first;
    char const* second;
    unsigned places;
    char const* text;
  } const table[] = {
      {"1/2", "2/3", 3, "[=0.500, 0.667]"},
      {"1/3", "2/3", 3, "[0.333, 0.667]"},
      {"1/3", "1/2", 3, "[0.333, =0.500]"},
      {"1/4", "1/4", 3, "[=0.250, =0.250]"},
      {"-1/3", "-2/3", 2, "[-0.67, -0.33]"},
      {"-1/3", "1/3", 0, "[-1, 1]"},
      {"-1/900", "-1/999", 2, "[-0.01, 0.00]"},
      {"0", "1e-30", 1, "[=0.0, 0.1]"},
      {"1e20", "-7", 0, "[=-7, =100000000000000000000]"},
  };
  for (auto const& [first, second, places, text] : table)
    EXPECT_EQ(to_decimal({parse_rational(first), parse_rational(second)}, places), text);
}

TEST(Decimal, KeepsEveryEnclosureWithinLessThanAUnitOfTheLastPlace) {
  auto next = test::random_bytes(5);
  for (int i = 0; i < 10'250; ++i) {  // 10,000 with decimals
    unsigned const places = static_cast<unsigned>(i) % 41;
    mpq_class const unit(1, power_of_ten(places));
    mpq_class lower = test::corner_rational(next);
    if (next() % 4 == 0) {  // an end that is exact, or nearly so
      lower = mpq_class(test::corner_integer(next), power_of_ten(1 + next() % 40));
      lower.canonicalize();
    }
    mpq_class width = abs(test::corner_rational(next));
    if (next() % 2 == 0) width /= power_of_ten(next() % 60);
    mpq_class const upper = lower + width;
    QNumber const low = test::to_number(lower, next() % 4 == 0);
    QNumber const high = test::to_number(upper, next() % 4 == 0);

    auto const text =
        next() % 2 == 0 ? to_decimal({low, high}, places) : to_decimal({high, low}, places);
    SCOPED_TRACE(lower.get_str() + " " + upper.get_str() + " " + text);
    ASSERT_TRUE(text.front() == '[' && text.back() == ']');
    auto const comma = text.find(", ");
    bool const low_is_exact = text[1] == '=';
    bool const high_is_exact = text[comma + 2] == '=';
    auto const shown_low = text.substr(1, comma - 1).substr(low_is_exact);
    auto const shown_high = text.substr(comma + 2, text.size() - comma - 3).substr(high_is_exact);
    mpq_class const below = lower - read(shown_low, places);
    mpq_class const above = read(shown_high, places) - upper;
    ASSERT_TRUE(below >= 0 && below < unit);
    ASSERT_TRUE(above >= 0 && above < unit);
    ASSERT_EQ(low_is_exact, below == 0);
    ASSERT_EQ(high_is_exact, above == 0);
    ASSERT_EQ(is_decimal(low, places), below == 0);

    auto const nearest = to_decimal(low, places, Rounding::nearest);
    mpq_class const distance = abs(lower - read(nearest, places));
    ASSERT_TRUE(2 * distance < unit || (2 * distance == unit && (nearest.back() - '0') % 2 == 0));
    ASSERT_EQ(to_decimal(low, places, Rounding::down), shown_low);
    ASSERT_EQ(to_decimal(high, places, Rounding::up), shown_high);
    ASSERT_TRUE(parse_rational(shown_low) == test::to_number(mpq_class(lower - below)));
  }
}

TEST(Decimal, KnowsWhatItCanHold) {
  struct {
    char const* number;
    unsigned least;  // places
  } const table[] = {{"0", 0},       {"-7", 0},   {"1/2", 1},      {"-1/5", 1},
                     {"1/10", 1},    {"3/16", 4}, {"1/3125", 5},   {"1/400", 4},
                     {"1/62500", 6}, {"7e-3", 3}, {"12345e-9", 9}, {"1e-4000", 4000}};
  for (auto const& [number, least] : table) {
    QNumber const q = parse_rational(number);
    EXPECT_TRUE(is_decimal(q, least)) << number;
    EXPECT_TRUE(is_decimal(q, 4'000'000'000U)) << number;
    EXPECT_FALSE(least > 0 && is_decimal(q, least - 1)) << number;
  }
  for (char const* number : {"1/3", "-7/6", "1/35", "1/18446744073709551617"})
    EXPECT_FALSE(is_decimal(parse_rational(number), 4'000'000'000U)) << number;
}

}  // namespace
}  // namespace zelk::convert
