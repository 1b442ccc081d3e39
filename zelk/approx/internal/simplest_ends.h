#pragma once

#include <utility>

#include "zelk/approx/internal/interval_expansion.h"
#include "zelk/approx/internal/ratio.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// Goes on to the simplest number of the interval, which becomes the last convergent.
/// Requires: nothing is split off yet, and the interval is not empty.
void expand_to_simplest(IntervalExpansion& x, bool lower_open, bool upper_open);

/// The simplest numbers in [outer_lower, lower] and [upper, outer_upper].
/// Requires: they stand in this order.
std::pair<QNumber, QNumber> simplest_ends(Ratio const& outer_lower, Ratio const& lower,
                                          Ratio const& upper, Ratio const& outer_upper);

}  // namespace zelk::na
