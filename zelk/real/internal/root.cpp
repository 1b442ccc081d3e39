#include "zelk/numbers/integer.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/point_functions.h"

namespace zelk::real {

Interval root_at(QNumber const& x, unsigned long degree, long bits) {
  if (x.is_zero()) return QNumber();
  Integer numerator, denominator;
  if (mpz_root(numerator, x.numerator(), degree) != 0 &&
      mpz_root(denominator, x.denominator(), degree) != 0)
    return QNumber::from_lowest_terms({numerator, denominator});
  floor_scaled(numerator, x, (bits + 1) * static_cast<long>(degree));
  mpz_root(numerator, numerator, degree);
  mpz_add_ui(denominator, numerator, 1);
  return {dyadic(numerator, bits + 1), dyadic(denominator, bits + 1)};
}

}  // namespace zelk::real
