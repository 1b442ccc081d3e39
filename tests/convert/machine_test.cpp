#include "zelk/convert/machine.h"

#include <gmpxx.h>
#include <gtest/gtest.h>
#include <mpfr.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/convert/refusal.h"
#include "tests/support/random_number.h"

namespace zelk::convert {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// MPFR's own rounding. 2600 bits hold a dyadic test value exactly, and any other so closely that
/// no double and no point half-way between two lies between it and what is rounded.
double round_by_mpfr(mpq_class const& q, mpfr_rnd_t direction) {
  mpfr_t value;
  mpfr_init2(value, 2600);
  mpfr_set_q(value, q.get_mpq_t(), MPFR_RNDN);
  double const rounded = mpfr_get_d(value, direction);
  mpfr_clear(value);
  return rounded;
}

/// Tells -0.0 from 0.0.
std::uint64_t bits(double x) { return std::bit_cast<std::uint64_t>(x); }

mpq_class power_of_two(int exponent) {
  return exponent < 0 ? mpq_class(mpq_class(1) >> -exponent) : mpq_class(mpq_class(1) << exponent);
}

void expect_rounded(mpq_class const& exact) {
  QNumber const q = test::to_number(exact);
  double const below = round_by_mpfr(exact, MPFR_RNDD), above = round_by_mpfr(exact, MPFR_RNDU);
  EXPECT_EQ(bits(to_double(q, Rounding::down)), bits(below)) << exact;
  EXPECT_EQ(bits(to_double(q, Rounding::up)), bits(above)) << exact;
  EXPECT_EQ(bits(to_double(q, Rounding::nearest)), bits(round_by_mpfr(exact, MPFR_RNDN))) << exact;
  EXPECT_EQ(enclosing_doubles(q), std::pair(below, above)) << exact;
}

TEST(Machine, TakesDoublesExactlyAndRoundsLikeMpfr) {
  std::vector<double> doubles = {0.0, 0.1, DBL_TRUE_MIN, 2 * DBL_TRUE_MIN, DBL_MAX};
  for (double const x : {DBL_MIN, DBL_MAX, 1.0, 2.0, 0x1p63, 0x1p64, 0x1p1023, 0x1p-64})
    doubles.insert(doubles.end(), {std::nextafter(x, 0.0), x, std::nextafter(x, infinity)});
  auto next = test::random_bytes(8);
  for (int i = 0; i < 500; ++i) {
    int const exponent = static_cast<int>(next() * 9) - 1200;
    doubles.push_back(std::ldexp(static_cast<double>(test::corner_word(next)), exponent));
    expect_rounded(test::corner_rational(next) * power_of_two(exponent));
  }
  mpq_class const half(1, 2), little = power_of_two(-200);
  for (double const magnitude : doubles) {
    if (std::isinf(magnitude)) continue;
    for (double const x : {magnitude, -magnitude}) {
      mpq_class const exact(x);
      EXPECT_EQ(test::to_rational(from_double(x)), exact);
      EXPECT_EQ(from_double(x).is_big(), test::to_number(exact).is_big()) << x;
      // On the way to the next one, where some rounding changes its mind.
      mpq_class const gap = power_of_two(std::max(std::ilogb(x == 0 ? DBL_MIN : x), -1022) - 52);
      for (mpq_class const& part : {mpq_class(0), little, mpq_class(half - little), half,
                                    mpq_class(half + little), mpq_class(1 - little)})
        expect_rounded(exact + part * gap);
    }
  }
  for (int const exponent : {1024, 1025, 100'000, -1075, -1076, -1077, -100'000})
    for (int const sign : {1, -1}) expect_rounded(sign * power_of_two(exponent));
}

template <class T>
constexpr bool is_taken = requires(T x) {
  from_double(x);
};
static_assert(is_taken<double> && is_taken<float>);
static_assert(!is_taken<long double> && !is_taken<long> && !is_taken<unsigned long>);

TEST(Machine, RefusesWhatIsNotARationalDouble) {
  for (double const x : {infinity, -infinity})
    EXPECT_EQ(test::refusal([&] { from_double(x); }), "an infinity is not a rational number");
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (double const x : {nan, -nan, std::bit_cast<double>(0x7ff0000000000001)})
    EXPECT_EQ(test::refusal([&] { from_double(x); }), "a NaN is not a rational number");
}

}  // namespace
}  // namespace zelk::convert
