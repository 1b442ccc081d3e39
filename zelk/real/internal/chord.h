#pragma once

#include <gmp.h>

namespace zelk::real {

/// The two functions with f(2x) = f(x) (4 ± f(x)) that all others are made of: the square of the
/// chord of an angle x, 2 - 2 cos x = (2 sin(x/2))^2, and 2 cosh x - 2 = (2 sinh(x/2))^2.
enum class Chord { circular, hyperbolic };

/// How often the argument is halved before the series at n limbs.
unsigned long chord_halvings(mp_size_t n);

/// Of an x over 2^(64 n), over the same: within 2^(chord_error_bits(n)) units.
/// Requires: 0 <= x < 2 and n >= 1. The same integer may stand on both sides.
void chord_squared(mpz_ptr out, mpz_srcptr x, mp_size_t n, Chord kind);
inline unsigned long chord_error_bits(mp_size_t n) { return 2 * chord_halvings(n) + 4; }

/// The number of limbs after which the error is less than 2^-(bits).
mp_size_t chord_limbs(unsigned long bits);

}  // namespace zelk::real
