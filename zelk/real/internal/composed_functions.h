#pragma once

#include "zelk/numbers/q_number.h"
#include "zelk/real/interval.h"

/// Elementary functions made of those in point_functions.h, at a rational point: intervals that
/// hold the value and are at most 2^-bits wide.
namespace zelk::real {

class Constants;

/// Never at a pole: the multiples of pi/2 but 0 are not rational.
Interval tan_at(QNumber const& x, long bits, Constants& constants);

/// Requires: -1 <= x <= 1.
Interval asin_at(QNumber const& x, long bits, Constants& constants);
Interval acos_at(QNumber const& x, long bits, Constants& constants);

Interval sinh_at(QNumber const& x, long bits, Constants& constants);
Interval cosh_at(QNumber const& x, long bits, Constants& constants);
Interval tanh_at(QNumber const& x, long bits, Constants& constants);

/// x^y. A rational value is exact unless it has far more than `bits` bits. Requires: x > 0.
Interval pow_at(QNumber const& x, QNumber const& y, long bits, Constants& constants);

/// About log2 e^x and log2 x^y, kept within +-2^62.
long exponent_of_exp(QNumber const& x);
long exponent_of_pow(QNumber const& x, QNumber const& y, Constants& constants);

}  // namespace zelk::real
