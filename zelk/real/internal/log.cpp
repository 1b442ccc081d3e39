#include <algorithm>
#include <bit>
#include <cstdlib>

#include "zelk/numbers/integer.h"
#include "zelk/real/internal/chord.h"
#include "zelk/real/internal/constants.h"
#include "zelk/real/internal/fixed_functions.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/point_functions.h"

namespace zelk::real {

Interval log_at(QNumber const& x, long bits, Constants& constants) {
  if (x == QNumber(1)) return QNumber();
  // x = m 2^exponent
  bits = std::max(bits, 0L);
  long exponent = magnitude(x) - 1;
  mp_size_t const n = limbs_for(static_cast<unsigned long>(bits) + 3);
  long const precision = n * GMP_NUMB_BITS;
  Integer m, log2;
  floor_scaled(m, x, precision - exponent);
  // 1/2 < m < 2
  mpz_mul_ui(log2, m, 3);
  while (mpz_sizeinbase(log2, 2) < static_cast<unsigned long>(precision) + 3) {
    mpz_mul_2exp(m, m, 1);
    mpz_mul_2exp(log2, log2, 1);
    --exponent;
  }
  log_fixed(m, m, n);
  auto const size =
      static_cast<unsigned long>(std::bit_width(static_cast<unsigned long>(std::abs(exponent))));
  constants.log2(log2, static_cast<unsigned long>(precision) + size);
  mpz_mul_si(log2, log2, exponent);
  mpz_fdiv_q_2exp(log2, log2, size);
  mpz_add(m, m, log2);
  return enclosure(m, 1UL << (chord_error_bits(n) + function_error_bits), precision, bits);
}

}  // namespace zelk::real
