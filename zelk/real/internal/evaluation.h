#pragma once

#include <string>
#include <variant>
#include <vector>

#include "zelk/numbers/q_number.h"
#include "zelk/real/expression.h"
#include "zelk/real/internal/precision.h"
#include "zelk/real/internal/value.h"

namespace zelk::real {

/// An operation may be defined on its operands, or not: more precision would tell.
struct Undecided {
  std::string reason;
  QNumber width;  // of what is unknown of the operands
};

/// The natural interval extension of the expression.
///
/// Throws: std::domain_error if an operation is certainly not defined on all of its operands;
/// std::length_error if a result would be too long; std::invalid_argument if the expression has a
/// variable.
///
/// Where `parts` are asked for, they become what encloses each part, in postfix order.
std::variant<Value, Undecided> evaluate(Expression const& expression, Precision const& precision,
                                        std::vector<Interval>* parts = nullptr);

}  // namespace zelk::real
