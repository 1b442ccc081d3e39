#include <algorithm>

#include "zelk/numbers/integer.h"
#include "zelk/real/internal/constants.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/point_functions.h"
#include "zelk/real/internal/series.h"

namespace zelk::real {

Interval log_at(QNumber const& x, long bits, Constants& constants) {
  if (x == QNumber(1)) return QNumber();
  long const exponent = magnitude(x) - 1;
  long const precision = std::max(bits, 0L) + 72;
  Integer m, log2;
  floor_scaled(m, x, precision - exponent);
  log_series(m, m, static_cast<unsigned long>(precision));
  constants.log2(log2, static_cast<unsigned long>(precision));
  mpz_mul_si(log2, log2, exponent);
  mpz_add(m, m, log2);
  return enclosure(m, 1UL << 63, precision, bits);
}

}  // namespace zelk::real
