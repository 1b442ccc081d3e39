#include "zelk/approx/internal/tolerance.h"

#include "zelk/numbers/integer.h"

namespace zelk::na {

QNumber tolerance_of(unsigned prec) {
  if (prec > 18) {  // 10^19 is beyond small form
    Integer power;
    mpz_ui_pow_ui(power, 10, prec);
    return QNumber(QNumber::LowestTerms{IntegerView(1), power});
  }
  long power = 1;
  for (unsigned i = 0; i < prec; ++i) power *= 10;
  return {1, power};
}

}  // namespace zelk::na
