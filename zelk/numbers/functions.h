#pragma once

#include "zelk/config.h"
#include "zelk/numbers/q_number.h"

/// Functions of a number's value: equal numbers give equal results, whatever their forms, and a
/// result is in small form whenever it fits. None takes a gcd of the parts.
namespace zelk {

/// The numerator and the denominator in lowest terms, as integers that stay good.
ZELK_EXPORT QNumber numerator(QNumber const& q);
ZELK_EXPORT QNumber denominator(QNumber const& q);

/// The greatest integer that is at most q, and the least that is at least q.
ZELK_EXPORT QNumber floor(QNumber const& q);
ZELK_EXPORT QNumber ceil(QNumber const& q);

/// The nearest integer; of two equally near the one farther from zero: 5/2 to 3, -5/2 to -3.
ZELK_EXPORT QNumber round(QNumber const& q);

/// q to the power of an integer, negative ones included; q^0 is 1, also for q = 0.
///
/// Cost: that of the last squarings, O(M(n)) for a result of n bits.
/// Throws: std::domain_error when q is 0 and the exponent negative.
ZELK_EXPORT QNumber pow(QNumber const& q, long exponent);

}  // namespace zelk
