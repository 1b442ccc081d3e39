#pragma once

#include <algorithm>
#include <optional>
#include <utility>

#include "zelk/numbers/q_number.h"
#include "zelk/real/interval.h"

namespace zelk::real {

/// What is known of a part of an expression: of one real number an enclosure; of an interval an
/// enclosure of each of its two ends, which are real numbers too. So it is known not only what the
/// part may be, but also how much of that comes from the precision and how much was put in.
class Value {
 public:
  /// Exactly that.
  explicit Value(Interval const& exact) : lower_enclosure(exact.lower()) {
    if (!exact.is_point()) upper_enclosure = exact.upper();
  }

  /// A number in that interval.
  static Value number(Interval enclosure) { return Value(std::move(enclosure), std::nullopt); }

  /// An interval with ends in these. Where both are known and equal, that is a number.
  static Value interval(Interval lower_end, Interval upper_end) {
    if (lower_end.is_point() && lower_end == upper_end) return number(std::move(lower_end));
    return {std::move(lower_end), std::move(upper_end)};
  }

  bool is_number() const { return !upper_enclosure; }

  /// Where the ends lie: of a number twice the same.
  Interval const& lower_end() const { return lower_enclosure; }
  Interval const& upper_end() const { return upper_enclosure ? *upper_enclosure : lower_enclosure; }

  bool is_exact() const { return lower_end().is_point() && upper_end().is_point(); }

  /// How much the ends may differ from what is known of them.
  QNumber unknown_width() const { return std::max(lower_end().width(), upper_end().width()); }

  /// An interval that holds all of it.
  Interval outer() const { return {lower_end().lower(), upper_end().upper()}; }

  /// An interval that lies in it, if one is known.
  std::optional<Interval> inner() const {
    if ((is_number() && !is_exact()) || upper_end().lower() < lower_end().upper())
      return std::nullopt;
    return Interval(lower_end().upper(), upper_end().lower());
  }

 private:
  Value(Interval lower_end, std::optional<Interval> upper_end)
      : lower_enclosure(std::move(lower_end)), upper_enclosure(std::move(upper_end)) {}

  Interval lower_enclosure;
  std::optional<Interval> upper_enclosure;  // of intervals
};

Value operator-(Value const& x);
Value operator+(Value const& a, Value const& b);
Value operator*(Value const& a, Value const& b);

/// Throws: DivisionByZero if x may be 0.
Value inverse(Value const& x);

}  // namespace zelk::real
