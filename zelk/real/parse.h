#pragma once

#include <string_view>

#include "zelk/config.h"
#include "zelk/convert/text.h"
#include "zelk/real/expression.h"

namespace zelk::real {

/// The most that the magnitudes of all decimal exponents in one text add up to.
inline constexpr long max_decimal_exponents = 10 * convert::max_decimal_exponent;

/// The expression that a text like `exp(1/3) - sqrt(2)*[0.1, 0.2]` means.
///
///     + - * / ^           from the left, a power first; ^ from the right: 2^3^2 is 2^9
///     -x, +x              after ^, before *: -2^2 is -4; also after an operator, as in 2^-1
///     12  .5  5.  1e-3    exact decimals; fractions are quotients: 1/3
///     [a, b]              an interval, with signed decimals or fractions a <= b
///     pi  e  x            the constants and the variable
///     exp(y) log(y) or ln(y)  sqrt(y)  root(y, n)  sin(y) cos(y) tan(y)  asin(y) acos(y) atan(y)
///     sinh(y) cosh(y) tanh(y)
///
/// Names are case sensitive; blanks may stand between all of these. A product is never implied:
/// `2 pi` and `2(3)` are refused.
///
/// Throws: convert::ParseError at the first offending column.
/// Cost: linear in the text and subquadratic in the length of each number; nothing recurs, so that
/// no nesting is too deep.
ZELK_EXPORT Expression parse_expression(std::string_view text);

}  // namespace zelk::real
