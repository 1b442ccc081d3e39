#pragma once

#include <vector>

#include "zelk/config.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// All convergents of a continued fraction, by the recurrence h' = a h + h0, k' = a k + k0: of
/// [4; 2, 6, 7] they are 4, 9/2, 58/13, 415/93. Small wherever they fit, whatever the terms.
///
/// Requires: the terms are integers as `RationalApproximator::get_cf` finds them.
/// Cost: two products for each term. Source: docs/mathematics.md, section 3.
[[nodiscard]] ZELK_EXPORT std::vector<QNumber> convergents(std::vector<QNumber> const& terms);

}  // namespace zelk::na
