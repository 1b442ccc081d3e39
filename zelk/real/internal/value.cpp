#include "zelk/real/internal/value.h"

#include <algorithm>

#include "zelk/numbers/errors.h"

namespace zelk::real {

Value operator-(Value const& x) {
  return x.is_number() ? Value::number(-x.lower_end())
                       : Value::interval(-x.upper_end(), -x.lower_end());
}

Value operator+(Value const& a, Value const& b) {
  auto lower_end = a.lower_end() + b.lower_end();
  if (a.is_number() && b.is_number()) return Value::number(std::move(lower_end));
  return Value::interval(std::move(lower_end), a.upper_end() + b.upper_end());
}

Value operator*(Value const& a, Value const& b) {
  auto corner = a.lower_end() * b.lower_end();
  if (a.is_number() && b.is_number()) return Value::number(std::move(corner));
  // A product is least and greatest at the corners, and of enclosed numbers the least and the
  // greatest lie between the least and the greatest bounds.
  Interval const others[] = {a.lower_end() * b.upper_end(), a.upper_end() * b.lower_end(),
                             a.upper_end() * b.upper_end()};
  Interval least = corner, greatest = corner;
  for (auto const& other : others) {
    least = {std::min(least.lower(), other.lower()), std::min(least.upper(), other.upper())};
    greatest = {std::max(greatest.lower(), other.lower()),
                std::max(greatest.upper(), other.upper())};
  }
  return Value::interval(std::move(least), std::move(greatest));
}

Value inverse(Value const& x) {
  auto const outer = x.outer();
  if (outer.sign() == 0)
    throw DivisionByZero(outer.is_point() ? "division by 0"
                                          : "division by an interval that holds 0");
  auto const inverted = [](Interval const& end) {
    return Interval(end.upper().inv(), end.lower().inv());
  };
  return x.is_number() ? Value::number(inverted(x.lower_end()))
                       : Value::interval(inverted(x.upper_end()), inverted(x.lower_end()));
}

}  // namespace zelk::real
