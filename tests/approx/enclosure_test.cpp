#include <gtest/gtest.h>

#include <string>

#include "tests/support/real.h"
#include "tests/support/text_form.h"

namespace zelk {
namespace {

using Bounds = na::PowerSeriesApproximator::Bounds;

void expect_enclosure(test::Real const& truth, Bounds const& bounds) {
  EXPECT_TRUE(truth.is_between(test::to_rational(bounds.first), test::to_rational(bounds.second)));
}

/// The width of `bounds` in units of 10^-prec.
mpq_class width(Bounds const& bounds, unsigned prec) {
  return (test::to_rational(bounds.second) - test::to_rational(bounds.first)) *
         mpz_class('1' + std::string(prec, '0'));
}

TEST(Enclosures, HoldTheTruthAndAreAsNarrowAsPromised) {
  na::RationalApproximator rational;
  for (QNumber x : test::points()) {
    for (bool const negative : {false, true}) {
      test::Real exp, sin, cos;
      exp.set_exp(test::to_rational(x));
      sin.set_wave(test::to_rational(x), mpfr_sin);
      cos.set_wave(test::to_rational(x), mpfr_cos);
      for (QNumber const& point : {x, test::in_big_form(x)}) {
        // New for each form: what is known in the other must not answer.
        na::PowerSeriesApproximator series(rational);
        for (unsigned prec : {0U, 1U, 2U, 3U, 6U, 10U, 19U, 33U, 60U}) {
          SCOPED_TRACE(test::show(point) + " at " + std::to_string(prec));
          expect_enclosure(exp, series.maclaurin_exp_bounds(point, prec));
          EXPECT_LT(width(series.maclaurin_exp_bounds(point, prec), prec), 1);
          auto const [first, second] = series.maclaurin_exp_der_bounds(point, prec);
          expect_enclosure(exp, negative ? Bounds(second, first) : Bounds(first, second));
          expect_enclosure(sin, series.maclaurin_sin_bounds(point, prec));
          EXPECT_LT(width(series.maclaurin_sin_bounds(point, prec), prec), 2);
          expect_enclosure(cos, series.maclaurin_sin_der_bounds(point, prec));
        }
      }
      x.negate();
    }
  }
  test::Real pi;
  pi.set_pi();
  for (unsigned prec = 0; prec <= 60; prec += 1 + prec / 5) {
    na::PowerSeriesApproximator series(rational);
    expect_enclosure(pi, series.machin_pi_bounds(prec));
    EXPECT_LE(width(series.machin_pi_bounds(prec), prec), 1);
  }
}

}  // namespace
}  // namespace zelk
