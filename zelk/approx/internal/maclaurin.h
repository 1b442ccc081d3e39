#pragma once

#include "zelk/approx/power_series_approximator.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// The records of exp and of sin at x: Maclaurin sums, in exact arithmetic throughout.
PowerSeriesApproximator::ApproxData sum_exp(QNumber const& x, unsigned prec);
PowerSeriesApproximator::ApproxData sum_sin(QNumber const& x, unsigned prec);

}  // namespace zelk::na
