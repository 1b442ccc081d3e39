#include "zelk/real/internal/evaluation.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

#include "zelk/real/internal/kinds.h"

namespace zelk::real {

namespace {

/// What an operand may be for all that is known: what it is certain to hold, otherwise the ends of
/// what it may be.
std::vector<Value> candidates(Value const& operand) {
  if (auto const inner = operand.inner()) return {Value(*inner)};
  auto const outer = operand.outer();
  return {Value(outer.lower()), Value(outer.upper())};
}

bool is_defined(Row const& row, Precision const& precision, Operands operands) {
  try {
    row.evaluate(precision, operands);
    return true;
  } catch (std::domain_error const&) {
    return false;
  }
}

/// Whether an operation that is not defined on all that the operands may be could be defined on
/// what they are.
bool may_be_defined(Row const& row, Precision const& precision, Operands operands) {
  if (std::all_of(operands.begin(), operands.end(), [](Value const& x) { return x.is_exact(); }))
    return false;
  for (auto const& first : candidates(operands.front()))
    for (auto const& last : candidates(operands.back())) {
      Value const chosen[] = {first, last};
      if (is_defined(row, precision, Operands(chosen, operands.size()))) return true;
    }
  return false;
}

QNumber unknown_width(Operands operands) {
  QNumber width;
  for (auto const& x : operands) width = std::max(width, x.unknown_width());
  return width;
}

}  // namespace

std::variant<Value, Undecided> evaluate(Expression const& expression, Precision const& precision,
                                        std::vector<Interval>* parts) {
  std::vector<Value> values;
  auto const note = [&] {
    if (parts != nullptr) parts->push_back(values.back().outer());
  };
  if (parts != nullptr) parts->clear();
  auto next = expression.numbers().begin();
  for (Kind const kind : expression.postfix()) {
    if (kind == Kind::number) {
      values.emplace_back(*next++);
      note();
      continue;
    }
    auto const& row = row_of(kind);
    Operands const operands(values.end() - row.arity, values.end());
    try {
      auto value = row.evaluate(precision, operands);
      values.erase(values.end() - row.arity, values.end());
      values.push_back(std::move(value));
      note();
    } catch (std::domain_error const& error) {
      if (!may_be_defined(row, precision, operands)) throw;
      return Undecided{error.what(), unknown_width(operands)};
    }
  }
  return std::move(values.back());
}

}  // namespace zelk::real
