#pragma once

#include <concepts>
#include <utility>

#include "zelk/config.h"
#include "zelk/convert/rounding.h"
#include "zelk/numbers/q_number.h"

/// Rationals and machine floating point. Into `double` is a way out of exactness, for display and
/// for filters that decide the easy cases and leave the others to exact numbers; no result of the
/// library is ever computed from one. Out of `double` is exact.
///
/// Nothing here depends on the rounding mode in force or computes in floating point.
namespace zelk::convert {

/// The double that `rounding` takes `q` to, as IEEE 754 defines it, infinities included:
/// - Above DBL_MAX, `down` gives DBL_MAX and `up` infinity; `nearest` gives infinity from
///   2^1024 - 2^970 on, which is half-way to the power of two that would follow. So below -DBL_MAX,
///   with `down` and `up` exchanged.
/// - Below the normal numbers the result is a subnormal one or zero, rounded once.
/// - A negative number that becomes zero becomes -0.0; zero itself is +0.0.
///
/// Cost: linear in the size of q.
[[nodiscard]] ZELK_EXPORT double to_double(QNumber const& q, Rounding rounding);

/// The tightest pair of doubles with `q` between them, each rounded as by `to_double`: equal when q
/// is a double, otherwise neighbours, one of them infinite beyond DBL_MAX.
///
/// Cost: as `to_double` twice.
[[nodiscard]] ZELK_EXPORT std::pair<double, double> enclosing_doubles(QNumber const& q);

/// The exact value of `x`; both zeros are 0.
///
/// Cost: constant, a gcd of at most 1075 bits.
/// Throws: std::invalid_argument when x is infinite or not a number.
ZELK_EXPORT QNumber from_double(double x);

/// Of other types only `float` is taken: it always goes to `double` unchanged.
template <class T>
requires(!std::same_as<T, double> && !std::same_as<T, float>) QNumber from_double(T)
= delete;

}  // namespace zelk::convert
