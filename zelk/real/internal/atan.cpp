#include <algorithm>

#include "zelk/numbers/integer.h"
#include "zelk/real/internal/constants.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/point_functions.h"
#include "zelk/real/internal/series.h"

namespace zelk::real {

Interval atan_at(QNumber const& x, long bits, Constants& constants) {
  if (x.is_zero()) return QNumber();
  bits = std::max(bits, 0L);
  long const precision = bits + 8;
  QNumber const size = abs(x);
  bool const is_steep = QNumber(1) < size;
  Integer y;
  floor_scaled(y, is_steep ? size.inv() : size, precision);
  atan_series(y, y, static_cast<unsigned long>(precision));
  if (is_steep) {
    Integer pi;
    constants.pi(pi, static_cast<unsigned long>(precision));
    mpz_fdiv_q_2exp(pi, pi, 1);
    mpz_sub(y, pi, y);
  }
  if (x.sign() < 0) mpz_neg(y, y);
  return enclosure(y, 8, precision, bits);
}

}  // namespace zelk::real
