#pragma once

#include "zelk/approx/power_series_approximator.h"
#include "zelk/config.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// e^x, less than 10^-prec wide as the bounds of `series` are, with ends that are many times
/// shorter: about as many digits in the two together as the width calls for. Made from the bounds
/// with one digit more, each end moved outward to the simplest number within 9/20 of the width.
///
/// An end never passes 0, but may become 0: e^-30 to ten digits lies between 0 and something.
///
/// Requires: prec is less than the greatest unsigned.
/// Cost: that of `series` at prec + 1, whose record stays in its table, and of `shortened`.
ZELK_EXPORT PowerSeriesApproximator::Bounds short_exp_bounds(PowerSeriesApproximator& series,
                                                             QNumber const& x, unsigned prec);

/// The same of sin x and cos x, less than 2 * 10^-prec wide. Their signs are not certain.
ZELK_EXPORT PowerSeriesApproximator::Bounds short_sin_bounds(PowerSeriesApproximator& series,
                                                             QNumber const& x, unsigned prec);
ZELK_EXPORT PowerSeriesApproximator::Bounds short_cos_bounds(PowerSeriesApproximator& series,
                                                             QNumber const& x, unsigned prec);

/// pi, at most 10^-prec wide, in the simplest ends near an enclosure that is far narrower. Nothing
/// is kept.
///
/// Cost: O(M(n) log^2 n) for n digits, where M(n) is the time of GMP's multiplication; memory
/// linear. Source: docs/mathematics.md, section 14.
[[nodiscard]] ZELK_EXPORT PowerSeriesApproximator::Bounds short_pi_bounds(unsigned prec);

}  // namespace zelk::na
