#pragma once

#include <stdexcept>
#include <string>

#include "zelk/config.h"
#include "zelk/real/expression.h"
#include "zelk/real/interval.h"

namespace zelk::certify {

/// That the expression lies in `bounds`, as a file for Coq with a goal that its `interval` tactic
/// (package coq-interval) proves, computing with about `digits` digits. Intervals in the expression
/// become variables that range over them.
///
/// Throws: std::domain_error for asin and acos, which the tactic does not know, and for powers and
/// roots whose exponent is no number written as such, a quotient of integers, or its negative.
ZELK_EXPORT std::string to_coq(real::Expression const& expression, real::Interval const& bounds,
                               unsigned digits);

}  // namespace zelk::certify
