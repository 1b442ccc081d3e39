#pragma once

#include <string>
#include <variant>
#include <vector>

#include "zelk/numbers/q_number.h"
#include "zelk/real/expression.h"
#include "zelk/real/internal/precision.h"
#include "zelk/real/internal/signs.h"
#include "zelk/real/internal/value.h"

namespace zelk::real {

/// What is known of all of an expression.
struct Evaluated {
  Value value;
  Signs signs;  // those of the formula too
};

/// An operation may be defined on its operands and have a result that is not too long, or not: more
/// precision would tell.
struct Undecided {
  std::string reason;
  bool is_length;   // whether the length is in question
  QNumber width;    // of what is unknown of the operands
  bool is_blurred;  // whether some operand is certainly not 0, although its enclosure holds 0
};

/// The natural interval extension of the expression.
///
/// Throws: Undefined or DivisionByZero if an operation is certainly not defined on all of its
/// operands; TooLong if a result would certainly be too long; std::invalid_argument if the
/// expression has a variable.
///
/// Where `parts` are asked for, they become what encloses each part, in postfix order.
std::variant<Evaluated, Undecided> evaluate(Expression const& expression,
                                            Precision const& precision,
                                            std::vector<Interval>* parts = nullptr);

}  // namespace zelk::real
