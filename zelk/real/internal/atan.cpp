#include <algorithm>
#include <cstdlib>

#include "zelk/numbers/integer.h"
#include "zelk/real/internal/chord.h"
#include "zelk/real/internal/constants.h"
#include "zelk/real/internal/fixed_functions.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/point_functions.h"

namespace zelk::real {

Interval atan_at(QNumber const& x, long bits, Constants& constants) {
  if (x.is_zero()) return QNumber();
  bits = std::max(bits, 0L);
  QNumber const size = abs(x);
  bool const is_steep = QNumber(1) < size;
  // Of y = |x| or 1/|x| it is known that y > 2^-lost, unless y is so small that nothing is lost.
  long const lost = std::min(std::abs(magnitude(x)) + 2, bits / 16 + 8);
  mp_size_t const n = limbs_for(static_cast<unsigned long>(bits + lost) + 3);
  long const precision = n * GMP_NUMB_BITS;
  Integer y, pi;
  floor_scaled(y, is_steep ? size.inv() : size, precision);
  atan_fixed(y, y, n);
  if (is_steep) {
    constants.pi(pi, static_cast<unsigned long>(precision) - 1);
    mpz_sub(y, pi, y);
  }
  if (x.sign() < 0) mpz_neg(y, y);
  return enclosure(y, chord_error_bits(n) + function_error_bits + static_cast<unsigned long>(lost),
                   precision, bits);
}

}  // namespace zelk::real
