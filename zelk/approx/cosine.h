#pragma once

#include "zelk/approx/power_series_approximator.h"
#include "zelk/config.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// cos x, less than 2 * 10^-prec wide as the sine is: the sine's derivative, at as many digits as
/// make it that narrow.
///
/// Cost: that of the sine at each number of digits tried, of which the last dominates; all of them
/// stay in the table of `series`.
ZELK_EXPORT PowerSeriesApproximator::Bounds cosine_bounds(PowerSeriesApproximator& series,
                                                          QNumber const& x, unsigned prec);

}  // namespace zelk::na
