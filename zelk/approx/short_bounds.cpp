#include "zelk/approx/short_bounds.h"

#include <cassert>
#include <climits>

#include "zelk/approx/cosine.h"
#include "zelk/approx/internal/chudnovsky.h"
#include "zelk/approx/internal/ratio.h"
#include "zelk/approx/internal/simplest_ends.h"
#include "zelk/approx/simplest.h"
#include "zelk/numbers/integer.h"

namespace zelk::na {

namespace {

using Bounds = PowerSeriesApproximator::Bounds;

/// Both ends moved outward by up to 9/20 of `units` * 10^-prec: with bounds less than a tenth as
/// wide as that, less than `units` * 10^-prec in all. Requires: 1 unit, or 2.
Bounds shorten(Bounds const& bounds, unsigned units, unsigned prec) {
  Integer n(9UL);
  Integer d;
  mpz_ui_pow_ui(d, 10, prec);
  mpz_mul_ui(d, d, 20 / units);
  return shortened(bounds, QNumber(QNumber::LowestTerms{n, d}));
}

/// One digit more. Requires: there is room for it.
unsigned finer(unsigned prec) {
  assert(prec < UINT_MAX);
  return prec + 1;
}

}  // namespace

Bounds short_exp_bounds(PowerSeriesApproximator& series, QNumber const& x, unsigned prec) {
  return shorten(series.maclaurin_exp_bounds(x, finer(prec)), 1, prec);
}

Bounds short_sin_bounds(PowerSeriesApproximator& series, QNumber const& x, unsigned prec) {
  return shorten(series.maclaurin_sin_bounds(x, finer(prec)), 2, prec);
}

Bounds short_cos_bounds(PowerSeriesApproximator& series, QNumber const& x, unsigned prec) {
  return shorten(cosine_bounds(series, x, finer(prec)), 2, prec);
}

Bounds short_pi_bounds(unsigned prec) {
  constexpr unsigned guard_bits = 16;
  Integer power, unit, slack;
  mpz_ui_pow_ui(power, 10, prec);
  unsigned long const bits = mpz_sizeinbase(power, 2) + guard_bits;
  mpz_setbit(unit, bits);
  // On each side there is room for half of 10^-prec less the width of the sum.
  mpz_fdiv_q(slack, unit, power);
  mpz_sub_ui(slack, slack, chudnovsky_units);
  mpz_fdiv_q_2exp(slack, slack, 1);

  Integer below, above, outer_below, outer_above;
  sum_chudnovsky(below, bits);
  mpz_add_ui(above, below, chudnovsky_units);
  mpz_sub(outer_below, below, slack);
  mpz_add(outer_above, above, slack);
  return simplest_ends({outer_below, unit}, {below, unit}, {above, unit}, {outer_above, unit});
}

}  // namespace zelk::na
