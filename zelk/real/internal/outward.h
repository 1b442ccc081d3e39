#pragma once

#include <gmp.h>

#include "zelk/numbers/q_number.h"
#include "zelk/real/interval.h"

/// Numbers and intervals over powers of two, made without a gcd.
namespace zelk::real {

/// An n such that 2^n < |q| < 2^(n + 2). Requires: q is not 0.
long magnitude_of(QNumber const& q);

/// mantissa * 2^exponent.
QNumber dyadic(mpz_srcptr mantissa, long exponent);

/// The smallest interval with ends over 2^bits that holds every a/b. Requires: b > 0.
Interval quotient_outward(Interval const& a, Interval const& b, long bits);

}  // namespace zelk::real
