#include <gmp.h>
#include <gmpxx.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <stdexcept>

#include "tests/support/random_number.h"
#include "zelk/convert/gmp.h"

namespace zelk::convert {
namespace {

/// The same parts, whatever mpq_equal would make of them.
bool same_parts(mpq_class const& a, mpq_class const& b) {
  return a.get_num() == b.get_num() && a.get_den() == b.get_den();
}

TEST(Gmp, GivesBackWhatItTook) {
  auto next = test::random_bytes(11);
  mpq_class target(7, 3);
  for (int i = 0; i < 5000; ++i) {
    mpq_class const exact = test::corner_rational(next);
    QNumber const small = from_mpq(exact);
    ASSERT_EQ(small.is_big(), !mpz_fits_slong_p(exact.get_num_mpz_t()) ||
                                  !mpz_fits_slong_p(exact.get_den_mpz_t()) ||
                                  exact.get_num() == LONG_MIN);
    QNumber const big = test::to_number(exact, true);
    for (QNumber const& q : {small, big}) {
      to_mpq(target.get_mpq_t(), q);
      ASSERT_TRUE(same_parts(target, exact)) << exact;
      ASSERT_TRUE(same_parts(to_mpq_class(q), exact)) << exact;
    }

    mpz_class const n = test::corner_integer(next);
    for (QNumber const& q : {from_mpz(n), test::to_number(n, true)}) {
      ASSERT_TRUE(q.is_integer());
      ASSERT_EQ(to_mpz_class(q), n);
    }
    ASSERT_EQ(from_mpz(n).is_big(), !mpz_fits_slong_p(n.get_mpz_t()) || n == LONG_MIN);

    // Neither canonical nor positive below.
    mpz_class const factor = test::corner_integer(next);
    if (factor == 0) continue;
    target.get_num() = exact.get_num() * factor;
    target.get_den() = exact.get_den() * factor;
    ASSERT_TRUE(same_parts(to_mpq_class(from_mpq(target)), exact)) << exact;
  }
}

template <class T>
constexpr bool is_taken = requires(T x) {
  from_mpz(x);
};
static_assert(is_taken<mpz_class> && is_taken<mpz_srcptr> && is_taken<IntegerView const&>);
static_assert(!is_taken<int> && !is_taken<double> && !is_taken<std::nullptr_t>);

TEST(Gmp, RefusesZeroDenominatorsAndIntegersThatAreNone) {
  mpq_class infinite;
  mpz_class target = 5;
  for (long const n : {0, 1, -1}) {
    infinite.get_num() = n;
    infinite.get_den() = 0;
    EXPECT_THROW(from_mpq(infinite), std::invalid_argument);
  }
  for (QNumber const& q : {QNumber(1, 2), test::to_number(mpq_class("-7/3"), true)}) {
    EXPECT_THROW(to_mpz(target.get_mpz_t(), q), std::invalid_argument);
    EXPECT_THROW(to_mpz_class(q), std::invalid_argument);
  }
  EXPECT_EQ(target, 5);
}

}  // namespace
}  // namespace zelk::convert
