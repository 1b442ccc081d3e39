#include "zelk/real/internal/outward.h"

#include <gmp.h>

#include "zelk/numbers/integer.h"
#include "zelk/real/internal/fixed_point.h"

namespace zelk::real {

namespace {

/// a/b * 2^bits, rounded by one of GMP's divisions. Requires: b > 0.
QNumber divided(decltype(mpz_fdiv_q)* divide, QNumber const& a, QNumber const& b, long bits) {
  Integer n, d;
  mpz_mul(n, a.numerator(), b.denominator());
  mpz_mul(d, a.denominator(), b.numerator());
  if (bits >= 0)
    mpz_mul_2exp(n, n, static_cast<unsigned long>(bits));
  else
    mpz_mul_2exp(d, d, static_cast<unsigned long>(-bits));
  divide(n, n, d);
  return dyadic(n, bits);
}

}  // namespace

Interval quotient_outward(Interval const& a, Interval const& b, long bits) {
  auto const& least_divisor = a.lower().sign() < 0 ? b.lower() : b.upper();
  auto const& greatest_divisor = a.upper().sign() < 0 ? b.upper() : b.lower();
  return {divided(mpz_fdiv_q, a.lower(), least_divisor, bits),
          divided(mpz_cdiv_q, a.upper(), greatest_divisor, bits)};
}

}  // namespace zelk::real
