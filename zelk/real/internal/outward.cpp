#include "zelk/real/internal/outward.h"

#include <algorithm>

#include "zelk/numbers/integer.h"

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
  return dyadic(n, -bits);
}

}  // namespace

long magnitude_of(QNumber const& q) {
  auto const size = [](mpz_srcptr n) { return static_cast<long>(mpz_sizeinbase(n, 2)); };
  return size(q.numerator()) - size(q.denominator()) - 1;
}

QNumber dyadic(mpz_srcptr mantissa, long exponent) {
  Integer n, d(1UL);
  if (exponent >= 0) {
    mpz_mul_2exp(n, mantissa, static_cast<unsigned long>(exponent));
  } else if (mpz_sgn(mantissa) != 0) {
    auto const common = std::min(mpz_scan1(mantissa, 0), static_cast<unsigned long>(-exponent));
    mpz_tdiv_q_2exp(n, mantissa, common);
    mpz_mul_2exp(d, d, static_cast<unsigned long>(-exponent) - common);
  }
  return QNumber::from_lowest_terms({n, d});
}

Interval quotient_outward(Interval const& a, Interval const& b, long bits) {
  auto const& least_divisor = a.lower().sign() < 0 ? b.lower() : b.upper();
  auto const& greatest_divisor = a.upper().sign() < 0 ? b.upper() : b.lower();
  return {divided(mpz_fdiv_q, a.lower(), least_divisor, bits),
          divided(mpz_cdiv_q, a.upper(), greatest_divisor, bits)};
}

}  // namespace zelk::real
