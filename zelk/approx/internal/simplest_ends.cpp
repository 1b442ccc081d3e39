#include "zelk/approx/internal/simplest_ends.h"

#include "zelk/approx/internal/quotient_matrix.h"
#include "zelk/numbers/integer.h"

namespace zelk::na {

namespace {

/// The simplest number between `given` and one end of `around`.
/// Requires: `around` is split as far as possible.
QNumber simplest_towards(IntervalExpansion const& around, bool to_lower, Ratio const& given) {
  QuotientMatrix const& common = around.prefix;
  Ratio rest(given.n, given.d);
  Integer n, d;
  take_off(common, rest, n);
  bool const is_lower = to_lower != common.is_odd;
  Ratio const& far = is_lower ? around.lower : around.upper;
  Ratio const& low = is_lower ? far : rest;
  Ratio const& high = is_lower ? rest : far;
  IntervalExpansion own(low.n, low.d, high.n, high.d);
  expand_to_simplest(own, false, false);

  mpz_mul(n, common.h, own.prefix.h);
  mpz_addmul(n, common.h0, own.prefix.k);
  mpz_mul(d, common.k, own.prefix.h);
  mpz_addmul(d, common.k0, own.prefix.k);
  return QNumber::from_lowest_terms({n, d});
}

}  // namespace

void expand_to_simplest(IntervalExpansion& x, bool lower_open, bool upper_open) {
  x.split_all();
  if (x.prefix.is_odd) std::swap(lower_open, upper_open);
  Integer floor, lower_rest, upper_rest, greatest, integer;
  for (;;) {
    // The integers of the interval are those from `integer` to `greatest`.
    mpz_fdiv_qr(floor, lower_rest, x.lower.n, x.lower.d);
    bool const is_above = lower_open || mpz_sgn(lower_rest.get()) != 0;
    mpz_add_ui(integer, floor, is_above ? 1 : 0);
    bool const is_bounded = mpz_sgn(x.upper.d.get()) != 0;
    if (is_bounded) {
      (upper_open ? mpz_cdiv_q : mpz_fdiv_q)(greatest, x.upper.n, x.upper.d);
      if (upper_open) mpz_sub_ui(greatest, greatest, 1);
    }
    if (!is_bounded || mpz_cmp(integer, greatest) <= 0) break;
    mpz_set(upper_rest, x.upper.n);
    mpz_submul(upper_rest, floor, x.upper.d);
    x.split_off(floor, lower_rest, upper_rest);
    std::swap(lower_open, upper_open);
  }
  // Below 0 the greatest integer is the simplest: that happens only before the first quotient.
  if (mpz_sgn(integer.get()) < 0) {
    if (mpz_sgn(greatest.get()) < 0)
      mpz_swap(integer, greatest);
    else
      mpz_set_ui(integer, 0);
  }
  x.prefix.append(integer.get());
}

std::pair<QNumber, QNumber> simplest_ends(Ratio const& outer_lower, Ratio const& lower,
                                          Ratio const& upper, Ratio const& outer_upper) {
  IntervalExpansion around(outer_lower.n, outer_lower.d, outer_upper.n, outer_upper.d);
  around.split_all();
  return {simplest_towards(around, true, lower), simplest_towards(around, false, upper)};
}

}  // namespace zelk::na
