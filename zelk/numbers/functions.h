#pragma once

#include "zelk/config.h"
#include "zelk/numbers/q_number.h"

namespace zelk::detail {
ZELK_EXPORT QNumber numerator(QNumber const& q);
ZELK_EXPORT QNumber denominator(QNumber const& q);
ZELK_EXPORT QNumber floor(QNumber const& q);
ZELK_EXPORT QNumber ceil(QNumber const& q);
ZELK_EXPORT QNumber round(QNumber const& q);
ZELK_EXPORT QNumber pow(QNumber const& q, long exponent);
}  // namespace zelk::detail

/// Functions of a number's value: equal numbers give equal results, whatever their forms, and a
/// result is in small form whenever it fits. None takes a gcd of the parts. Templates, so that a
/// host's own functions of these names come before them, as its own relations, unary minus and swap
/// do; `abs` is the class's alone. As a value a function is `zelk::floor<>`.
namespace zelk {

/// The numerator and the denominator in lowest terms, as integers that stay good.
template <int = 0>
[[nodiscard]] QNumber numerator(QNumber const& q) {
  return detail::numerator(q);
}
template <int = 0>
[[nodiscard]] QNumber denominator(QNumber const& q) {
  return detail::denominator(q);
}

/// The greatest integer that is at most q, and the least that is at least q.
template <int = 0>
[[nodiscard]] QNumber floor(QNumber const& q) {
  return detail::floor(q);
}
template <int = 0>
[[nodiscard]] QNumber ceil(QNumber const& q) {
  return detail::ceil(q);
}

/// The nearest integer; of two equally near the one farther from zero: 5/2 to 3, -5/2 to -3.
template <int = 0>
[[nodiscard]] QNumber round(QNumber const& q) {
  return detail::round(q);
}

/// q to the power of an integer, negative ones included; q^0 is 1, also for q = 0.
///
/// Cost: that of the last squarings, O(M(n)) for a result of n bits.
/// Throws: DivisionByZero when q is 0 and the exponent negative.
template <int = 0>
[[nodiscard]] QNumber pow(QNumber const& q, long exponent) {
  return detail::pow(q, exponent);
}

}  // namespace zelk
