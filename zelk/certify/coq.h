#pragma once

#include <string>

#include "zelk/config.h"
#include "zelk/real/expression.h"
#include "zelk/real/interval.h"

namespace zelk::certify {

/// That the expression lies in `bounds`, as a file for Coq with a goal that its `interval` tactic
/// (package coq-interval) proves, computing with about `digits` digits. Intervals in the expression
/// become variables that range over them.
///
/// The tactic does not prove all: arc sines and cosines are told by arc tangents, which tells too
/// little of intervals of them, and a power of what may be 0 or negative is none in Coq, unless the
/// exponent is an integer.
[[nodiscard]] ZELK_EXPORT std::string to_coq(real::Expression const& expression,
                                             real::Interval const& bounds, unsigned digits);

}  // namespace zelk::certify
