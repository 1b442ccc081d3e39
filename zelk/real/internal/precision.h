#pragma once

#include <algorithm>
#include <span>

#include "zelk/numbers/q_number.h"
#include "zelk/real/accuracy.h"
#include "zelk/real/elementary_functions.h"
#include "zelk/real/internal/value.h"
#include "zelk/real/interval.h"

namespace zelk::real {

using Operands = std::span<Value const>;

/// How precisely the parts of an expression are computed: each step adds an error of at most
/// 10^-digits times the value, or of 10^-digits where that is good enough for values near 0.
/// Whether they matter after all is seen at the end, and then all digits are raised.
class Precision {
 public:
  /// For so many digits; with `keep_zeros` of values near 0 too, as far as that can be afforded.
  /// Requires: wanted >= 1, and `functions` live longer.
  /// Throws: TooLong if so many digits are beyond the limit of the functions.
  Precision(ElementaryFunctions& functions, unsigned long wanted, bool keep_zeros);

  ElementaryFunctions& functions() const { return *answers; }

  /// Of a step.
  Accuracy accuracy(bool is_relative) const {
    return is_relative ? Accuracy::relative(digits) : Accuracy::absolute(digits);
  }

  /// What x is taken to by a function whose images of intervals have that accuracy.
  template <class Function>
  Value image(Value const& x, Accuracy accuracy, Function const& function) const;

  /// a op b: exact while that is short, otherwise rounded, as long operands are before.
  template <class Operation>
  Value rational(Value const& a, Value const& b, Operation const& operation) const;

  /// Whether numbers of so many bits are computed with exactly.
  bool is_short(double size) const { return size <= exact_bits; }

  bool keeps_zeros() const { return are_zeros_kept; }

  /// Whether a value that begins with so many zeros is computed with significant digits.
  bool has_room_for_zeros(double zeros) const { return zeros <= most_zeros; }

  /// Throws: TooLong if a result of so many bits cannot be afforded. Products, and powers
  /// all the more, take several times the room of their results.
  void require_room(double result_bits) const { require_room(*answers, result_bits); }

  /// Throws: TooLong if so many digits are beyond the limit of the functions.
  static void require_digits(ElementaryFunctions const& functions, unsigned long digits);

 private:
  static void require_room(ElementaryFunctions const& functions, double result_bits);
  Interval rounded(Interval const& x, long least_magnitude) const;
  Value rounded(Value const& x, long least_magnitude) const;
  Value rounded(Value const& x) const { return rounded(x, -static_cast<long>(most_zeros)); }
  Value shortened_if_exact(Value const& x) const;
  QNumber error_at(QNumber const& end, Accuracy accuracy) const;

  ElementaryFunctions* answers;
  unsigned digits;
  long bits;
  QNumber unit;
  double exact_bits;
  bool are_zeros_kept;
  double most_zeros;
};

/// Of both parts, of the longer end.
double size_of(Interval const& x);
double size_of(Value const& x);

template <class Function>
Value Precision::image(Value const& x, Accuracy accuracy, Function const& function) const {
  Interval const around = function(x.outer());
  if (x.is_number()) return Value::number(around);
  auto const inner = x.inner();
  if (!inner)
    return Value::interval(around, around);  // ends too near to each other to be told apart
  Interval const within = x.is_exact() ? around : function(*inner);
  // The true lower end is at most the least value on the inner interval, and that lies no farther
  // above its bound than the accuracy allows.
  Interval const lower_end(
      around.lower(),
      std::min(around.upper(), within.lower() + error_at(within.lower(), accuracy)));
  Interval const upper_end(
      std::max(around.lower(), within.upper() - error_at(within.upper(), accuracy)),
      around.upper());
  return rounded(Value::interval(lower_end, upper_end));
}

template <class Operation>
Value Precision::rational(Value const& a, Value const& b, Operation const& operation) const {
  double const size = size_of(a) + size_of(b);
  if (is_short(size)) {
    auto result = operation(a, b);
    return a.is_exact() && b.is_exact() ? result : rounded(result);
  }
  auto const x = shortened_if_exact(a), y = shortened_if_exact(b);
  require_room(size_of(x) + size_of(y));
  return rounded(operation(x, y));
}

}  // namespace zelk::real
