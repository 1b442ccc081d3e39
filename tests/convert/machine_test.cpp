#include "zelk/convert/machine.h"

#include <gmpxx.h>
#include <gtest/gtest.h>
#include <mpfr.h>

#include <algorithm>
#include <bit>
#include <cfenv>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/random_number.h"

namespace zelk::convert {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

struct Direction {
  Rounding rounding;
  mpfr_rnd_t mpfr;
};
constexpr Direction directions[] = {
    {Rounding::down, MPFR_RNDD}, {Rounding::up, MPFR_RNDU}, {Rounding::nearest, MPFR_RNDN}};

/// MPFR with the exponents of `double`, gradual underflow included.
class DoubleByMpfr {
 public:
  DoubleByMpfr() : least(mpfr_get_emin()), greatest(mpfr_get_emax()) {
    mpfr_set_emin(-1073);
    mpfr_set_emax(1024);
    mpfr_init2(value, 53);
  }
  DoubleByMpfr(DoubleByMpfr const&) = delete;
  DoubleByMpfr& operator=(DoubleByMpfr const&) = delete;
  ~DoubleByMpfr() {
    mpfr_clear(value);
    mpfr_set_emin(least);
    mpfr_set_emax(greatest);
  }

  double round(mpq_class const& q, mpfr_rnd_t direction) {
    int const ternary = mpfr_set_q(value, q.get_mpq_t(), direction);
    mpfr_subnormalize(value, ternary, direction);
    return mpfr_get_d(value, direction);
  }

 private:
  mpfr_exp_t least;
  mpfr_exp_t greatest;
  mpfr_t value;
};

/// Tells -0.0 from 0.0.
std::string bits(double x) { return std::to_string(std::bit_cast<std::uint64_t>(x)); }

mpq_class power_of_two(long exponent) {
  mpq_class power = 1;
  auto const size = static_cast<mp_bitcnt_t>(std::abs(exponent));
  return exponent < 0 ? mpq_class(power >> size) : mpq_class(power << size);
}

/// Finite doubles of all kinds, both zeros among them.
std::vector<double> finite_doubles() {
  std::vector<double> all = {0.0, -0.0, DBL_TRUE_MIN, 2 * DBL_TRUE_MIN, DBL_MIN, DBL_MAX,
                             1.0, 0.1,  1e22};
  for (double const x :
       {DBL_MIN, DBL_MAX, 1.0, 2.0, 0x1p63, 0x1p64, 0x1p-1023, 0x1p1023, 0x1p-64}) {
    all.push_back(std::nextafter(x, 0.0));
    all.push_back(x);
    if (x < DBL_MAX) all.push_back(std::nextafter(x, infinity));
  }
  std::mt19937_64 random(8);
  for (int i = 0; i < 500; ++i) {
    auto const x = std::bit_cast<double>(random());
    if (std::isfinite(x)) all.push_back(x);
    all.push_back(std::bit_cast<double>(random() >> (12 + random() % 52)));  // subnormal
    all.push_back(static_cast<double>(random() >> random() % 64));
  }
  return all;
}

/// The doubles, and on the way to their neighbours the points where some rounding changes its mind.
std::vector<mpq_class> rationals() {
  std::vector<mpq_class> all;
  mpq_class const little = power_of_two(-200);
  mpq_class const half(1, 2);
  for (double const x : finite_doubles()) {
    mpq_class const start(x);
    int exponent = 0;
    std::frexp(x, &exponent);
    mpq_class const gap = power_of_two(std::max(exponent - 53, -1074));
    for (mpq_class const& part : {mpq_class(0), little, mpq_class(half - little), half,
                                  mpq_class(half + little), mpq_class(1 - little)})
      all.push_back(start + part * gap);
  }
  auto next = test::random_bytes(9);
  for (int i = 0; i < 2000; ++i) {
    mpq_class const q = test::corner_rational(next);
    all.push_back(q);
    all.push_back(q * power_of_two(static_cast<long>(next() % 80 * 32) - 1280));
  }
  // Where the range of double ends, and far beyond.
  mpq_class const threshold = power_of_two(1024) - power_of_two(970);
  for (long const exponent : {1024L, 1025L, 100'000L, -1075L, -1076L, -1077L, -100'000L})
    all.push_back(power_of_two(exponent));
  for (mpq_class const& q : {threshold, mpq_class(threshold - little), mpq_class(1 / threshold)})
    all.push_back(q);
  auto const size = all.size();
  for (std::size_t i = 0; i < size; ++i) all.push_back(-all[i]);
  return all;
}

TEST(Machine, RoundsLikeMpfrUnderEveryRoundingMode) {
  DoubleByMpfr mpfr;
  int const mode = std::fegetround();
  for (mpq_class const& exact : rationals()) {
    QNumber const q = test::to_number(exact);
    for (auto const& [rounding, direction] : directions) {
      auto const expected = bits(mpfr.round(exact, direction));
      for (int const other : {FE_TONEAREST, FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO}) {
        std::fesetround(other);
        double const found = to_double(q, rounding);
        std::fesetround(mode);
        ASSERT_EQ(bits(found), expected) << exact.get_str();
      }
    }
    auto const [below, above] = enclosing_doubles(q);
    ASSERT_EQ(bits(below), bits(mpfr.round(exact, MPFR_RNDD)));
    ASSERT_EQ(bits(above), bits(mpfr.round(exact, MPFR_RNDU)));
  }
}

TEST(Machine, TakesEveryFiniteDoubleExactlyAndGivesItBack) {
  int const mode = std::fegetround();
  for (double const x : finite_doubles()) {
    for (int const other : {FE_TONEAREST, FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO}) {
      std::fesetround(other);
      QNumber const q = from_double(x);
      std::fesetround(mode);
      ASSERT_EQ(test::to_rational(q), mpq_class(x)) << x;
      ASSERT_EQ(q.is_big(), test::to_number(mpq_class(x)).is_big()) << x;
      for (auto const& [rounding, direction] : directions)
        ASSERT_EQ(bits(to_double(q, rounding)), bits(x == 0 ? 0.0 : x));
    }
  }
}

template <class T>
constexpr bool is_taken = requires(T x) {
  from_double(x);
};

TEST(Machine, RefusesWhatIsNotARationalDouble) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (double const x : {infinity, -infinity, nan, -nan, std::bit_cast<double>(0x7ff0000000000001)})
    EXPECT_THROW(from_double(x), std::invalid_argument);
  static_assert(is_taken<double> && is_taken<float>);
  static_assert(!is_taken<long double> && !is_taken<long> && !is_taken<unsigned long>);
}

}  // namespace
}  // namespace zelk::convert
