#include "zelk/real/expression.h"

#include <cassert>
#include <cstddef>
#include <stdexcept>

#include "zelk/real/internal/kinds.h"

namespace zelk::real {

Expression Expression::at(Interval const& x) const {
  Expression result = *this;
  result.constants.clear();
  auto next = constants.begin();
  for (Kind& kind : result.kinds) {
    if (kind == Kind::number) {
      result.constants.push_back(*next++);
    } else if (kind == Kind::variable) {
      kind = Kind::number;
      result.constants.push_back(x);
    }
  }
  return result;
}

Expression Expression::combined(Kind kind, Expression operand) {
  assert(row_of(kind).arity == 1);
  operand.kinds.push_back(kind);
  return operand;
}

Expression Expression::combined(Kind kind, Expression left, Expression const& right) {
  assert(row_of(kind).arity == 2);
  left.kinds.insert(left.kinds.end(), right.kinds.begin(), right.kinds.end());
  left.constants.insert(left.constants.end(), right.constants.begin(), right.constants.end());
  left.kinds.push_back(kind);
  return left;
}

Expression Expression::from_postfix(std::vector<Kind> postfix, std::vector<Interval> numbers) {
  std::size_t values = 0, constants = 0;
  for (Kind const kind : postfix) {
    if (static_cast<std::size_t>(kind) >= all_rows().size())
      throw std::invalid_argument("a postfix form has an unknown kind");
    auto const arity = row_of(kind).arity;
    if (values < arity)
      throw std::invalid_argument("an operation of a postfix form lacks operands");
    values = values - arity + 1;
    constants += kind == Kind::number;
  }
  if (values != 1) throw std::invalid_argument("a postfix form leaves several values, or none");
  if (constants != numbers.size())
    throw std::invalid_argument("a postfix form has not as many constants as numbers");
  return {std::move(postfix), std::move(numbers)};
}

}  // namespace zelk::real
