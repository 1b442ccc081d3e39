#include <stdexcept>

#include <algorithm>

#include "zelk/numbers/integer.h"
#include "zelk/real/internal/constants.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/point_functions.h"
#include "zelk/real/internal/series.h"

namespace zelk::real {

Interval exp_at(QNumber const& x, long bits, Constants& constants) {
  if (x.is_zero()) return QNumber(1);
  Integer zero;
  Integer one(1UL);
  long const size = std::max(magnitude(x), 0L);
  if (size > 62) {
    if (x.sign() > 0) throw std::length_error("the exponential is too large");
    return {QNumber(), dyadic(one, bits)};
  }
  // x = k log 2 + r with 0 <= r < log 2, nearly
  Integer r, log2, k;
  floor_scaled(r, x, size + 8);
  constants.log2(log2, static_cast<unsigned long>(size + 8));
  mpz_fdiv_q(k, r, log2);
  long exponent = mpz_get_si(k);
  if (exponent < -bits - 4) return {QNumber(), dyadic(one, bits)};

  long const precision = std::max(bits + exponent, 0L) + 8;
  long const guard = size + 4;
  floor_scaled(r, x, precision + guard);
  constants.log2(log2, static_cast<unsigned long>(precision + guard));
  mpz_submul(r, log2, k);
  if (mpz_sgn(r) < 0) {
    mpz_add(r, r, log2);
    --exponent;
  }
  mpz_fdiv_q_2exp(r, r, static_cast<unsigned long>(guard));
  exp_series(r, r, static_cast<unsigned long>(precision));
  return enclosure(r, 8, precision - exponent, bits);
}

}  // namespace zelk::real
