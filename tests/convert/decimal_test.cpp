#include "zelk/convert/decimal.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/text_form.h"
#include "zelk/convert/text.h"

namespace zelk::convert {
namespace {

/// What a decimal says, in units of its last place, read by GMP. Fails unless it has the form that
/// was promised.
mpz_class read(std::string digits, unsigned places) {
  bool const negative = digits.starts_with('-');
  digits.erase(0, negative);
  auto const whole = digits.size() - (places == 0 ? 0 : places + 1);
  if (places > 0) {
    EXPECT_EQ(digits.find('.'), whole);
    digits.erase(whole, 1);
  }
  EXPECT_EQ(digits.find_first_not_of("0123456789"), std::string::npos);
  EXPECT_TRUE(whole == 1 || digits[0] != '0');
  mpz_class const n(digits, 10);
  EXPECT_FALSE(negative && n == 0);
  return negative ? mpz_class(-n) : n;
}

void expect_rounded(mpq_class const& exact, bool big, unsigned places) {
  mpq_class scale = 1;
  mpz_ui_pow_ui(scale.get_num_mpz_t(), 10, places);
  QNumber const q = test::to_number(exact, big);
  auto const down = to_decimal(q, places, Rounding::down);
  auto const up = to_decimal(q, places, Rounding::up);
  auto const nearest = to_decimal(q, places, Rounding::nearest);
  SCOPED_TRACE(exact.get_str() + " between " + down + " and " + up + ", near " + nearest);
  // In units of the last place.
  mpq_class const value = exact * scale;
  mpz_class const floor = read(down, places), ceiling = read(up, places);
  mpz_class const closest = read(nearest, places);
  EXPECT_TRUE(floor <= value && value - floor < 1);
  EXPECT_TRUE(value <= ceiling && ceiling - value < 1);
  mpq_class const distance = 2 * abs(closest - value);
  EXPECT_TRUE(distance < 1 || (distance == 1 && mpz_even_p(closest.get_mpz_t()) != 0));
  EXPECT_EQ(is_decimal(q, places), value.get_den() == 1);
}

TEST(Decimal, RoundsByLessThanAUnitOfTheLastPlaceOrToTheEvenNeighbour) {
  for (QNumber const& q :
       test::numbers("0 12 2/3 -1/300 -1/3 1/2 3/2 5/2 -3/2 3/8 -1/8 999/1000 -1999/20 1/1024 "
                     "1/5 1/10 3/16 1/3125 1/400 1/62500 -7/1000 1/35 9223372036854775807/1000"))
    for (unsigned places = 0; places < 12; ++places)
      for (bool const big : {false, true}) expect_rounded(test::to_rational(q), big, places);
  auto next = test::random_bytes(5);
  for (int i = 0; i < 2000; ++i) {
    mpq_class const exact = test::corner_rational(next);
    expect_rounded(exact, false, next() % 41);
  }
}

TEST(Decimal, KnowsWhatAnyNumberOfPlacesHolds) {
  for (char const* number : {"-1/2", "1/3125", "1e-4000"})
    EXPECT_TRUE(is_decimal(parse_rational(number), 4'000'000'000U)) << number;
  for (char const* number : {"1/3", "-7/6", "1/35", "1/18446744073709551617"})
    EXPECT_FALSE(is_decimal(parse_rational(number), 4'000'000'000U)) << number;
  EXPECT_FALSE(is_decimal(parse_rational("1e-4000"), 3999));
}

TEST(Decimal, PrintsEnclosuresOutwardAndMarksExactEnds) {
  struct {
    char const *first, *second;
    unsigned places;
    char const* text;
  } const table[] = {
      {"1/2", "2/3", 3, "[=0.500, 0.667]"},     {"1/3", "2/3", 3, "[0.333, 0.667]"},
      {"1/3", "1/2", 3, "[0.333, =0.500]"},     {"1/4", "1/4", 3, "[=0.250, =0.250]"},
      {"-1/3", "-2/3", 2, "[-0.67, -0.33]"},    {"-1/3", "1/3", 0, "[-1, 1]"},
      {"-1/900", "-1/999", 2, "[-0.01, 0.00]"}, {"0", "1e-30", 1, "[=0.0, 0.1]"},
      {"1e9", "-7", 0, "[=-7, =1000000000]"},
  };
  for (auto const& [first, second, places, text] : table)
    EXPECT_EQ(to_decimal({parse_rational(first), parse_rational(second)}, places), text);
}

TEST(Decimal, PutsPowersOfTenBehindSignificantDigits) {
  for (char const* number : {"1", "-1/3", "2/3", "9999/10000", "99951/100", "1e-300", "-12345e40",
                             "1000000007/999999937", "123456789012345678901234567890/7"})
    for (unsigned digits = 1; digits < 7; ++digits) {
      QNumber const q = parse_rational(number);
      auto const down = to_scientific(q, digits, Rounding::down);
      auto const up = to_scientific(q, digits, Rounding::up);
      auto const size = parse_rational(down).sign() < 0 ? digits + 1 : digits;
      EXPECT_EQ(down.find('e'), size + (digits > 1));
      EXPECT_NE(down.find_first_not_of('-'), down.find('0'));
      auto const unit = parse_rational("1" + down.substr(down.find('e'))) *
                        parse_rational("1e-" + std::to_string(digits - 1));
      auto const width = parse_rational(up) - parse_rational(down);
      EXPECT_TRUE(parse_rational(down) <= q && q <= parse_rational(up));
      EXPECT_TRUE(down == up ? width.is_zero() : width == unit || width == 10 * unit) << down << up;
    }
  EXPECT_EQ(to_scientific({{-1, 2}, {2, 3}}, 3), "[=-5.00e-1, 6.67e-1]");
  EXPECT_EQ(to_scientific(0, 3, Rounding::nearest), "0");
}

}  // namespace
}  // namespace zelk::convert
