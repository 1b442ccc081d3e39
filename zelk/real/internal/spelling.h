#pragma once

#include <string_view>

#include "zelk/real/internal/kinds.h"

namespace zelk::real {

/// The constant, variable or function of that name; null if there is none.
Row const* find_name(std::string_view name);

/// The operator that is written so and takes so many operands; null if there is none.
Row const* find_operator(char symbol, unsigned arity);

/// The name that one changed letter makes of a wrong one, in either case, or that means the same,
/// as asin and arcsin; empty if there is none, or if the wrong one is another function elsewhere.
std::string_view nearest_name(std::string_view wrong);

}  // namespace zelk::real
