#pragma once

#include <string>

#include "zelk/config.h"
#include "zelk/real/expression.h"

namespace zelk::certify {

/// What a certificate of the value of an expression states, as it is spelled there: with all
/// parentheses, e as `exp(1)` and square roots as `root(x, 2)`.
///
/// Throws: std::invalid_argument if the expression has a variable.
[[nodiscard]] ZELK_EXPORT std::string statement_of(real::Expression const& expression);

}  // namespace zelk::certify
