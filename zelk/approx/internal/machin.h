#pragma once

#include "zelk/approx/power_series_approximator.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// Two successive partial sums of pi = 16 arctan(1/5) - 4 arctan(1/239), summed term by term until
/// they are at most `tolerance` = 10^-prec apart: the terms alternate and shrink, so pi lies
/// between the two.
PowerSeriesApproximator::Bounds sum_machin(QNumber const& tolerance);

}  // namespace zelk::na
