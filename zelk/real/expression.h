#pragma once

#include <concepts>
#include <utility>
#include <vector>

#include "zelk/config.h"
#include "zelk/numbers/q_number.h"
#include "zelk/real/interval.h"

namespace zelk::real {

/// What an expression is made of.
enum class Kind : unsigned char {
  number,
  variable,
  pi,
  e,
  negative,
  sum,
  difference,
  product,
  quotient,
  power,
  exp,
  log,
  root,
  sqrt,
  sin,
  cos,
  tan,
  atan,
  asin,
  acos,
  sinh,
  cosh,
  tanh,
};

/// A formula of rationals, intervals, pi, e and the elementary functions, with at most one variable
/// x: what is to be computed, but not yet how precisely. `parse_expression` makes one from a text;
/// in C++ it is written with operators and functions:
///
///     auto const f = exp(Expression::variable()) - sqrt(2 * Expression::pi());
///     auto const g = f.at(Interval(1, 2));
///
/// Nothing is ever simplified, and every occurrence of an interval, or of a variable for which one
/// is put, varies on its own: x - x over [0, 1] is [-1, 1], and not 0. What is enclosed is this
/// natural interval extension of the formula as it is written. A quotient of integers is that of
/// C++ unless one of the two is an expression: Expression(1) / 3 is a third, Expression(1 / 3) 0.
///
/// Requires: an expression that was moved from is not used before another is assigned to it.
/// Cost: an operation copies its right operand, and its left one unless that is an rvalue: a sum
/// may grow by `s = std::move(s) + term`, however long. No depth is too great.
class [[nodiscard]] ZELK_EXPORT Expression {
 public:
  /// A constant: whatever converts to an interval, machine integers and rationals among them.
  template <class T>
  requires(!std::same_as<T, Expression> && std::convertible_to<T, Interval>) Expression(T constant)
      : kinds{Kind::number}, constants{Interval(std::move(constant))} {}

  static Expression pi() { return Expression(Kind::pi); }
  static Expression e() { return Expression(Kind::e); }

  /// x.
  static Expression variable() { return Expression(Kind::variable); }

  /// The formula with a constant in place of x, at every occurrence anew.
  Expression at(Interval const& x) const;

  /// An operation on one operand, or on two. Requires: the kind takes so many.
  static Expression combined(Kind kind, Expression operand);
  static Expression combined(Kind kind, Expression left, Expression const& right);

  friend Expression operator-(Expression x) { return combined(Kind::negative, std::move(x)); }
  friend Expression operator+(Expression a, Expression const& b) {
    return combined(Kind::sum, std::move(a), b);
  }
  friend Expression operator-(Expression a, Expression const& b) {
    return combined(Kind::difference, std::move(a), b);
  }
  friend Expression operator*(Expression a, Expression const& b) {
    return combined(Kind::product, std::move(a), b);
  }
  friend Expression operator/(Expression a, Expression const& b) {
    return combined(Kind::quotient, std::move(a), b);
  }

  /// The formula in postfix order, each operation after its operands, and the constants in the
  /// order in which they occur. Throws: std::invalid_argument unless each operation finds its
  /// operands, one value remains in the end, and there are as many constants as numbers.
  static Expression from_postfix(std::vector<Kind> postfix, std::vector<Interval> numbers);
  std::vector<Kind> const& postfix() const ZELK_LIFETIMEBOUND { return kinds; }
  std::vector<Interval> const& numbers() const ZELK_LIFETIMEBOUND { return constants; }

 private:
  explicit Expression(Kind kind) : kinds{kind} {}
  Expression(std::vector<Kind> postfix, std::vector<Interval> numbers)
      : kinds(std::move(postfix)), constants(std::move(numbers)) {}

  std::vector<Kind> kinds;
  std::vector<Interval> constants;
};

/// x^y: by multiplication and roots where y is known to be rational, so that x may be negative if y
/// is an integer; otherwise exp(y log x) for x > 0. A function, since `^` of C++ would bind weaker
/// than `+`.
inline Expression pow(Expression x, Expression const& y) {
  return Expression::combined(Kind::power, std::move(x), y);
}

/// The root of a degree that is known to be a positive integer. Those of odd degree are taken of
/// negative numbers too.
inline Expression root(Expression x, Expression const& degree) {
  return Expression::combined(Kind::root, std::move(x), degree);
}

inline Expression exp(Expression x) { return Expression::combined(Kind::exp, std::move(x)); }
/// The natural logarithm.
inline Expression log(Expression x) { return Expression::combined(Kind::log, std::move(x)); }
inline Expression sqrt(Expression x) { return Expression::combined(Kind::sqrt, std::move(x)); }
inline Expression sin(Expression x) { return Expression::combined(Kind::sin, std::move(x)); }
inline Expression cos(Expression x) { return Expression::combined(Kind::cos, std::move(x)); }
inline Expression tan(Expression x) { return Expression::combined(Kind::tan, std::move(x)); }
inline Expression atan(Expression x) { return Expression::combined(Kind::atan, std::move(x)); }
inline Expression asin(Expression x) { return Expression::combined(Kind::asin, std::move(x)); }
inline Expression acos(Expression x) { return Expression::combined(Kind::acos, std::move(x)); }
inline Expression sinh(Expression x) { return Expression::combined(Kind::sinh, std::move(x)); }
inline Expression cosh(Expression x) { return Expression::combined(Kind::cosh, std::move(x)); }
inline Expression tanh(Expression x) { return Expression::combined(Kind::tanh, std::move(x)); }

}  // namespace zelk::real
