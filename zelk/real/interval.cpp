#include "zelk/real/interval.h"

#include <algorithm>
#include <stdexcept>

#include "zelk/numbers/errors.h"
#include "zelk/numbers/functions.h"

namespace zelk::real {

Interval::Interval(QNumber lower, QNumber upper) : low(std::move(lower)), high(std::move(upper)) {
  if (high < low) throw std::domain_error("the lower end of an interval is above its upper end");
}

QNumber Interval::midpoint() const { return (low + high) / 2; }

Interval operator+(Interval const& a, Interval const& b) {
  return {a.lower() + b.lower(), a.upper() + b.upper()};
}

Interval operator-(Interval const& a, Interval const& b) {
  return {a.lower() - b.upper(), a.upper() - b.lower()};
}

Interval operator*(Interval const& a, Interval const& b) {
  if (a.is_point() && b.is_point()) return a.lower() * b.lower();
  // A product is linear in each factor, so that it is least and greatest at the ends.
  auto const [least, greatest] = std::minmax(
      {a.lower() * b.lower(), a.lower() * b.upper(), a.upper() * b.lower(), a.upper() * b.upper()});
  return {least, greatest};
}

Interval operator/(Interval const& a, Interval const& b) {
  if (b.sign() == 0) throw DivisionByZero("division by an interval that holds 0");
  return a * Interval(b.upper().inv(), b.lower().inv());
}

Interval pow(Interval const& x, long exponent) {
  if (exponent < 0 && x.sign() == 0)
    throw DivisionByZero("a negative power of an interval that holds 0");
  QNumber const low = zelk::pow(x.lower(), exponent);
  if (x.is_point()) return low;
  QNumber const high = zelk::pow(x.upper(), exponent);
  auto const [least, greatest] = std::minmax(low, high);
  bool const has_minimum_inside = exponent > 0 && exponent % 2 == 0 && x.contains(QNumber());
  return {has_minimum_inside ? QNumber() : least, greatest};
}

Interval hull(Interval const& a, Interval const& b) {
  return {std::min(a.lower(), b.lower()), std::max(a.upper(), b.upper())};
}

std::optional<Interval> intersection(Interval const& a, Interval const& b) {
  QNumber const& lower = std::max(a.lower(), b.lower());
  QNumber const& upper = std::min(a.upper(), b.upper());
  if (upper < lower) return std::nullopt;
  return Interval(lower, upper);
}

}  // namespace zelk::real
