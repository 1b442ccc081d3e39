#pragma once

#include "zelk/numbers/q_number.h"
#include "zelk/real/interval.h"

namespace zelk::real {

/// The smallest interval with ends over 2^bits that holds every a/b, made without a gcd. `bits` may
/// be negative. Requires: b > 0.
Interval quotient_outward(Interval const& a, Interval const& b, long bits);

}  // namespace zelk::real
