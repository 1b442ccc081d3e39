#pragma once

#include <string>
#include <utility>

#include "zelk/config.h"
#include "zelk/convert/rounding.h"
#include "zelk/numbers/q_number.h"

namespace zelk::convert {

/// `q` as a decimal with exactly `places` digits after the point, and without a point when `places`
/// is 0: 2/3 is `0.66` down and `0.67` up, 5/2 is `2` to the nearest. There is no exponent, zero
/// has no sign, and `parse_rational` reads the text back as the number that was rounded to.
///
/// Cost: subquadratic in the digits of q and `places`, memory linear, also for the text.
[[nodiscard]] ZELK_EXPORT std::string to_decimal(QNumber const& q, unsigned places,
                                                 Rounding rounding);

/// Whether `places` digits after the point hold `q` exactly: then `to_decimal` rounds nothing.
///
/// Cost: subquadratic in the digits of q's denominator, whatever `places` is.
[[nodiscard]] ZELK_EXPORT bool is_decimal(QNumber const& q, unsigned places);

/// The interval between two numbers, its lower end rounded down and its upper end rounded up: what
/// is printed contains what is meant, and neither end moves by as much as 10^-places.
///
/// An end that is exact is marked by an equals sign; one without was rounded and lies strictly
/// outside. To three places it is `[0.333, 0.667]` between 1/3 and 2/3, `[=0.500, 0.667]` between
/// 1/2 and 2/3, and `[=0.250, =0.250]` for 1/4 alone. After bracket, blank and mark
/// `parse_rational` reads each end.
///
/// The ends may come in either order, as those of the derivatives of exp do; the lesser is the
/// lower. `to_decimal({1, 2}, 3)` means the interval from 1 to 2, not the number 1/2.
///
/// Cost: as `to_decimal` for both ends.
[[nodiscard]] ZELK_EXPORT std::string to_decimal(std::pair<QNumber, QNumber> const& enclosure,
                                                 unsigned places);

/// `q` with so many significant digits and a power of ten: 2/3 is `6.7e-1` to the nearest, and
/// -1000/3 is `-3.34e2` down. Zero is `0`. `parse_rational` reads it back, within its exponents.
///
/// Cost: subquadratic in the digits of q and `digits`.
/// Throws: std::invalid_argument when `digits` is 0.
[[nodiscard]] ZELK_EXPORT std::string to_scientific(QNumber const& q, unsigned digits,
                                                    Rounding rounding);

/// The interval between two numbers, rounded outward and marked as by `to_decimal`:
/// `[3.33e-1, =5.00e-1]`. Throws: std::invalid_argument when `digits` is 0.
[[nodiscard]] ZELK_EXPORT std::string to_scientific(std::pair<QNumber, QNumber> const& enclosure,
                                                    unsigned digits);

}  // namespace zelk::convert
