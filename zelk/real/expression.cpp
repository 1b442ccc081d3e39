#include "zelk/real/expression.h"

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

Expression Expression::combined(Kind kind, Expression left, Expression const& right) {
  left.kinds.insert(left.kinds.end(), right.kinds.begin(), right.kinds.end());
  left.constants.insert(left.constants.end(), right.constants.begin(), right.constants.end());
  left.kinds.push_back(kind);
  return left;
}

}  // namespace zelk::real
