#include "zelk/real/internal/fixed_point.h"

#include <algorithm>
#include <cassert>

#include "zelk/numbers/integer.h"

namespace zelk::real {

void floor_scaled(mpz_ptr out, QNumber const& x, long bits) {
  auto const numerator = x.numerator();
  auto const denominator = x.denominator();
  if (bits >= 0) {
    mpz_mul_2exp(out, numerator, static_cast<unsigned long>(bits));
    mpz_fdiv_q(out, out, denominator);
  } else {
    Integer scaled;
    mpz_mul_2exp(scaled, denominator, static_cast<unsigned long>(-bits));
    mpz_fdiv_q(out, numerator, scaled);
  }
}

long magnitude(QNumber const& x) {
  return static_cast<long>(mpz_sizeinbase(x.numerator(), 2)) -
         static_cast<long>(mpz_sizeinbase(x.denominator(), 2)) + 1;
}

QNumber dyadic(mpz_srcptr n, long bits) {
  if (mpz_sgn(n) == 0) return {};
  Integer numerator, denominator;
  if (bits <= 0) {
    mpz_mul_2exp(numerator, n, static_cast<unsigned long>(-bits));
    return QNumber::from_lowest_terms({numerator, IntegerView(1L)});
  }
  auto const places = static_cast<unsigned long>(bits);
  unsigned long const common = std::min(mpz_scan1(n, 0), places);
  mpz_tdiv_q_2exp(numerator, n, common);
  mpz_setbit(denominator, places - common);
  return QNumber::from_lowest_terms({numerator, denominator});
}

Interval enclosure(mpz_srcptr mid, unsigned long error_bits, long precision, long bits) {
  assert(precision - static_cast<long>(error_bits) >= bits + 3);
  // In units of 2^error_bits the value lies from 1 below to 2 above the floor of mid, and 3 of them
  // are less than a unit of the result: integers around are at most 2 apart.
  long const by = bits + 1 - (precision - static_cast<long>(error_bits));
  Integer lower, upper;
  mpz_fdiv_q_2exp(upper, mid, error_bits);
  mpz_sub_ui(lower, upper, 1);
  mpz_fdiv_q_2exp(lower, lower, static_cast<unsigned long>(-by));
  mpz_add_ui(upper, upper, 2);
  mpz_cdiv_q_2exp(upper, upper, static_cast<unsigned long>(-by));
  return Interval(Interval::Ordered{dyadic(lower, bits + 1), dyadic(upper, bits + 1)});
}

}  // namespace zelk::real
