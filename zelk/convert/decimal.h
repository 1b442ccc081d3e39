#pragma once

#include <string>
#include <utility>

#include "zelk/convert/rounding.h"
#include "zelk/export.h"
#include "zelk/numbers/q_number.h"

namespace zelk::convert {

/// `q` as a decimal with exactly `places` digits after the point, and without a point when `places`
/// is 0: 2/3 is `0.66` down and `0.67` up, 5/2 is `2` to the nearest. There is no exponent, zero
/// has no sign, and `parse_rational` reads the text back as the number that was rounded to.
///
/// Cost: subquadratic in the digits of q and `places`, memory linear, also for the text.
ZELK_EXPORT std::string to_decimal(QNumber const& q, unsigned places, Rounding rounding);

/// Whether `places` digits after the point hold `q` exactly: then `to_decimal` rounds nothing.
///
/// Cost: subquadratic in the digits of q's denominator, whatever `places` is.
ZELK_EXPORT bool is_decimal(QNumber const& q, unsigned places);

/// The interval between two numbers, its lower end rounded down and its upper end rounded up: what
/// is printed contains what is meant, and neither end moves by as much as 10^-places.
///
/// As usual for intervals, a square bracket stands at an end that belongs to it, which is exact
/// then, and a round one at an end that does not, which was rounded and lies outside. Between 1/2
/// and 2/3 it is `[0.500, 0.667)` to three places, between 1/3 and 2/3 `(0.333, 0.667)`, and 1/4
/// alone is `[0.250, 0.250]`. Inside the brackets `parse_rational` reads each end, on either side
/// of the comma and the blank.
///
/// The ends may come in either order, as those of the derivatives of exp do; the lesser is the
/// lower.
///
/// Cost: as `to_decimal` for both ends.
ZELK_EXPORT std::string to_decimal(std::pair<QNumber, QNumber> const& enclosure, unsigned places);

}  // namespace zelk::convert
