#pragma once

#include <span>
#include <string_view>

#include "zelk/real/expression.h"
#include "zelk/real/internal/precision.h"
#include "zelk/real/internal/signs.h"
#include "zelk/real/internal/value.h"

namespace zelk::real {

/// All that is known of a kind: a new one is one more row, and the function that evaluates it.
struct Row {
  Kind kind;
  std::string_view name;  // as it is written; empty if it has none
  unsigned arity;

  /// From the values of the operands that of the operation; null for numbers, which have theirs.
  /// Throws: Undefined or DivisionByZero if there may be none, TooLong if it is too long.
  Value (*evaluate)(Precision const& precision, Operands operands);

  /// From the signs that the operands may have those that the operation may have.
  Signs (*signs)(SignsOf operands);

  unsigned precedence = 0;  // of operators; the greater binds the tighter
  bool groups_right = false;
  std::string_view other_name = {};
};

Row const& row_of(Kind kind);

/// In the order of the kinds.
std::span<Row const> all_rows();

}  // namespace zelk::real
