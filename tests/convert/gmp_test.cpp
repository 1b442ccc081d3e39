#include "zelk/convert/gmp.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <cstddef>

#include "tests/convert/refusal.h"
#include "tests/support/random_number.h"
#include "tests/support/text_form.h"

namespace zelk::convert {
namespace {

void expect_round_trip(mpq_class const& exact, mpz_class const& factor) {
  using test::show;
  // A non-canonical fraction, and a target in use.
  mpq_class raw(exact.get_num() * factor, exact.get_den() * factor), target(7, 3);
  mpz_class const whole = exact.get_num();
  EXPECT_EQ(show(from_mpq(raw)), show(test::to_number(exact)));
  EXPECT_EQ(show(from_mpz(whole)), show(test::to_number(whole)));
  for (bool const big : {false, true}) {
    QNumber const q = test::to_number(exact, big);
    to_mpq(target.get_mpq_t(), q);
    EXPECT_EQ(target.get_str(), exact.get_str());
    EXPECT_EQ(to_mpq_class(q).get_str(), exact.get_str());
    EXPECT_EQ(to_mpz_class(test::to_number(whole, big)), whole);
  }
}

TEST(Gmp, GivesBackWhatItTook) {
  for (char const* text : {"0", "-6", "5/3", "9223372036854775807", "-9223372036854775808",
                           "1/9223372036854775808", "-9223372036854775809/2"})
    for (int const factor : {1, -1, 12}) expect_round_trip(mpq_class(text), factor);
  auto next = test::random_bytes(11);
  for (int i = 0; i < 1000; ++i) {
    mpq_class const exact = test::corner_rational(next);
    mpz_class const factor = test::corner_integer(next);
    expect_round_trip(exact, factor == 0 ? mpz_class(1) : factor);
  }
}

template <class T>
constexpr bool is_taken = requires(T x) {
  from_mpz(x);
};
static_assert(is_taken<mpz_class> && is_taken<mpz_srcptr> && is_taken<IntegerView const&>);
static_assert(!is_taken<int> && !is_taken<double> && !is_taken<std::nullptr_t>);

TEST(Gmp, RefusesZeroDenominatorsAndIntegersThatAreNone) {
  for (int const n : {0, 1, -1}) {
    mpq_class const infinite(n, mpz_class(0));
    EXPECT_EQ(test::refusal([&] { from_mpq(infinite); }), "zero denominator");
  }
  mpz_class target = 5;
  for (QNumber const& q : {QNumber(1, 2), test::number("-7/3B")})
    EXPECT_EQ(test::refusal([&] { to_mpz(target.get_mpz_t(), q); }),
              "the number is not an integer");
  EXPECT_EQ(target, 5);
}

}  // namespace
}  // namespace zelk::convert
