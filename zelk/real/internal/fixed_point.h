#pragma once

#include <gmp.h>

#include "zelk/numbers/q_number.h"
#include "zelk/real/interval.h"

/// Integers that stand for their value over a power of two.
namespace zelk::real {

/// floor(n * 2^by), for negative `by` too. The same integer may stand on both sides.
inline void shift(mpz_ptr out, mpz_srcptr n, long by) {
  if (by >= 0)
    mpz_mul_2exp(out, n, static_cast<unsigned long>(by));
  else
    mpz_fdiv_q_2exp(out, n, static_cast<unsigned long>(-by));
}

/// floor(x * 2^bits).
void floor_scaled(mpz_ptr out, QNumber const& x, long bits);

/// A bound e with |x| < 2^e, and |x| > 2^(e-2) unless x is 0.
long magnitude(QNumber const& x);

/// n / 2^bits.
QNumber dyadic(mpz_srcptr n, long bits);

/// An interval that holds all numbers within 2^error_bits units of mid/2^precision, whose ends are
/// integers over 2^(bits+1): at most 2^-bits wide. Requires: precision - error_bits >= bits + 3.
Interval enclosure(mpz_srcptr mid, unsigned long error_bits, long precision, long bits);

}  // namespace zelk::real
