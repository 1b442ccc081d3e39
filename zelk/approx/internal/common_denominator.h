#pragma once

#include <cassert>

#include "zelk/numbers/integer.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// The least common denominator of some numbers.
template <class... Numbers>
void least_common_denominator(mpz_ptr d, QNumber const& first, Numbers const&... others) {
  mpz_set(d, first.denominator());
  (mpz_lcm(d, d, others.denominator()), ...);
}

/// The numerator of q over d. Requires: d is a multiple of q's denominator.
inline void put_over(mpz_srcptr d, QNumber const& q, mpz_ptr numerator) {
  assert(mpz_divisible_p(d, q.denominator()) != 0);
  mpz_divexact(numerator, d, q.denominator());
  mpz_mul(numerator, numerator, q.numerator());
}

}  // namespace zelk::na
