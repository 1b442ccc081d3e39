#include <algorithm>
#include <cassert>

#include "zelk/numbers/integer.h"
#include "zelk/real/internal/chord.h"
#include "zelk/real/internal/constants.h"
#include "zelk/real/internal/exp_splitting.h"
#include "zelk/real/internal/fixed_functions.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/point_functions.h"

namespace zelk::real {

namespace {

/// Whether the series at x itself is quicker than at what is left of it modulo log 2.
bool is_short(QNumber const& x, long bits) {
  constexpr long least_precision = 6400, times_shorter = 256;
  return bits >= least_precision && magnitude(x) <= 1 &&
         static_cast<long>(mpz_sizeinbase(x.numerator(), 2) + mpz_sizeinbase(x.denominator(), 2)) <=
             bits / times_shorter;
}

Interval exp_of_short(QNumber const& x, long bits) {
  long const precision = bits + 16;
  auto const places = static_cast<unsigned long>(precision);
  auto const denominator = x.denominator();
  Integer out;
  if (mpz_popcount(denominator) == 1) {
    floor_scaled(out, x, precision);
    exp_in_bursts(out, out, places);
  } else {
    exp_of_ratio(out, x.numerator(), denominator, places);
  }
  return enclosure(out, splitting_error_bits, precision, bits);
}

/// [0, 2^-bits], which holds what is known to be less.
Interval from_zero(long bits) {
  return Interval(Interval::Ordered{QNumber(), dyadic(IntegerView(1L), bits)});
}

}  // namespace

Interval exp_at(QNumber const& x, long bits, Constants& constants) {
  if (x.is_zero()) return QNumber(1);
  if (is_short(x, bits)) return exp_of_short(x, bits);
  // |x| < 2^size
  long const size = std::max(magnitude(x), 0L);
  if (size > 62) {
    assert(x.sign() < 0);  // others could not be stored
    return from_zero(bits);
  }
  // x = exponent log 2 + r with 3/8 <= r < 3/8 + log 2, or within 1/16 of that
  constexpr long places = 8;
  Integer r, log2;
  floor_scaled(r, x, size + places);
  mpz_set_ui(log2, 3UL << (places - 3));
  mpz_mul_2exp(log2, log2, static_cast<unsigned long>(size));
  mpz_sub(r, r, log2);
  constants.log2(log2, static_cast<unsigned long>(size + places));
  mpz_fdiv_q(r, r, log2);
  long const exponent = mpz_get_si(r);
  if (exponent < -bits - 2) return from_zero(bits);

  mp_size_t const n = limbs_for(static_cast<unsigned long>(std::max(bits + exponent, 0L)) + 3);
  long const precision = n * GMP_NUMB_BITS;
  // The exponent is at most 2^(size+1): r is off by less than 3 units.
  long const guard = size + 2;
  floor_scaled(r, x, precision + guard);
  constants.log2(log2, static_cast<unsigned long>(precision + guard));
  if (exponent >= 0)
    mpz_submul_ui(r, log2, static_cast<unsigned long>(exponent));
  else
    mpz_addmul_ui(r, log2, static_cast<unsigned long>(-exponent));
  mpz_fdiv_q_2exp(r, r, static_cast<unsigned long>(guard));
  exp_fixed(r, r, n);
  return enclosure(r, chord_error_bits(n) + function_error_bits, precision - exponent, bits);
}

}  // namespace zelk::real
