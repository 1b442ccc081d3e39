#include "zelk/real/internal/evaluation.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

#include "zelk/real/internal/kinds.h"
#include "zelk/work/poll.h"

namespace zelk::real {

namespace {

/// What an operand may be for all that is known: what it is certain to hold, otherwise the ends of
/// what it may be, and 0 if that lies between. Where a function is not defined, or its values are
/// too long, on both sides of where it is, that is round 0.
std::vector<Value> candidates(Value const& operand) {
  if (auto const inner = operand.inner()) return {Value(*inner)};
  auto const outer = operand.outer();
  std::vector<Value> all{Value(outer.lower()), Value(outer.upper())};
  if (outer.sign() == 0) all.emplace_back(0);
  return all;
}

/// What an operation comes to.
enum class Outcome { result, undefined, too_long };

Outcome outcome(Row const& row, Precision const& precision, Operands operands) {
  try {
    row.evaluate(precision, operands);
    return Outcome::result;
  } catch (std::domain_error const&) {
    return Outcome::undefined;
  } catch (std::length_error const&) {
    return Outcome::too_long;
  }
}

/// Whether an operation that comes to `found` on all that the operands may be could come to
/// something else on what they are.
bool may_differ(Outcome found, Row const& row, Precision const& precision, Operands operands) {
  if (std::all_of(operands.begin(), operands.end(), [](Value const& x) { return x.is_exact(); }))
    return false;
  for (auto const& first : candidates(operands.front()))
    for (auto const& last : candidates(operands.back())) {
      Value const chosen[] = {first, last};
      if (outcome(row, precision, Operands(chosen, operands.size())) != found) return true;
    }
  return false;
}

/// Requires: an exception is being handled, of an operation on these.
Undecided undecided(std::exception const& error, bool is_length, Row const& row,
                    Precision const& precision, Operands operands, SignsOf signs) {
  if (!may_differ(is_length ? Outcome::too_long : Outcome::undefined, row, precision, operands))
    throw;
  Undecided result{error.what(), is_length, {}, false};
  for (std::size_t i = 0; i < operands.size(); ++i) {
    result.width = std::max(result.width, operands[i].unknown_width());
    result.is_blurred = result.is_blurred || is_blurred(signs[i], operands[i].outer());
  }
  return result;
}

}  // namespace

std::variant<Evaluated, Undecided> evaluate(Expression const& expression,
                                            Precision const& precision,
                                            std::vector<Interval>* parts) {
  std::vector<Value> values;
  std::vector<Signs> signs;
  auto const push = [&](Value value, Signs const& formal) {
    signs.push_back(formal & Signs::of(value.outer()));
    values.push_back(std::move(value));
    if (parts != nullptr) parts->push_back(values.back().outer());
  };
  if (parts != nullptr) parts->clear();
  auto next = expression.numbers().begin();
  for (Kind const kind : expression.postfix()) {
    if (kind == Kind::number) {
      push(Value(*next++), {true, true, true});
      continue;
    }
    auto const& row = row_of(kind);
    Operands const operands(values.end() - row.arity, values.end());
    SignsOf const signs_of_operands(signs.end() - row.arity, signs.end());
    work::poll(work::pass(512));
    try {
      auto value = row.evaluate(precision, operands);
      auto const formal = row.signs(signs_of_operands);
      values.erase(values.end() - row.arity, values.end());
      signs.erase(signs.end() - row.arity, signs.end());
      push(std::move(value), formal);
    } catch (std::domain_error const& error) {
      return undecided(error, false, row, precision, operands, signs_of_operands);
    } catch (std::length_error const& error) {
      return undecided(error, true, row, precision, operands, signs_of_operands);
    }
  }
  return Evaluated{std::move(values.back()), signs.back()};
}

}  // namespace zelk::real
