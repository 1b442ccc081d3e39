#pragma once

#include <cassert>
#include <concepts>
#include <optional>
#include <utility>

#include "zelk/config.h"
#include "zelk/numbers/q_number.h"

namespace zelk::real {

/// All real numbers from `lower()` to `upper()`, both included.
///
/// An operation gives the smallest interval that holds its results on all pairs of numbers from its
/// operands, and its ends are exact. Operands are taken to vary independently, so that x - x is an
/// interval round 0, and not 0, unless x is a point.
class [[nodiscard]] ZELK_EXPORT Interval {
 public:
  /// A point: [number, number]. Machine integers convert as they do to `QNumber`.
  template <class T>
  requires(std::convertible_to<T, QNumber>) Interval(T number)
      : low(std::move(number)), high(low) {}

  /// [lower, upper]. Throws: std::domain_error if lower > upper.
  Interval(QNumber lower, QNumber upper);

  /// Ends that are in order, which is not tested: a comparison of long ends takes a product.
  struct Ordered {
    QNumber lower;
    QNumber upper;
  };
  explicit Interval(Ordered ends) : low(std::move(ends.lower)), high(std::move(ends.upper)) {
    assert(!(high < low));
  }

  [[nodiscard]] QNumber const& lower() const ZELK_LIFETIMEBOUND { return low; }
  [[nodiscard]] QNumber const& upper() const ZELK_LIFETIMEBOUND { return high; }

  [[nodiscard]] bool is_point() const { return low == high; }
  [[nodiscard]] bool contains(Interval const& other) const {
    return !(other.low < low) && !(high < other.high);
  }

  /// 1 if all of its numbers are positive, -1 if all are negative, otherwise 0.
  [[nodiscard]] int sign() const { return low.sign() > 0 ? 1 : high.sign() < 0 ? -1 : 0; }

  [[nodiscard]] QNumber width() const { return high - low; }
  [[nodiscard]] QNumber midpoint() const;

  friend bool operator==(Interval const& a, Interval const& b) {
    return a.low == b.low && a.high == b.high;
  }

  Interval operator-() const { return {-high, -low}; }

 private:
  QNumber low;
  QNumber high;
};

ZELK_EXPORT Interval operator+(Interval const& a, Interval const& b);
ZELK_EXPORT Interval operator-(Interval const& a, Interval const& b);
ZELK_EXPORT Interval operator*(Interval const& a, Interval const& b);

/// Throws: DivisionByZero if b holds 0.
ZELK_EXPORT Interval operator/(Interval const& a, Interval const& b);

/// The powers of x's numbers: [-2, 1]^2 is [0, 4]. x^0 is 1.
/// Throws: DivisionByZero if the exponent is negative and x holds 0.
ZELK_EXPORT Interval pow(Interval const& x, long exponent);

/// The smallest interval that holds both.
ZELK_EXPORT Interval hull(Interval const& a, Interval const& b);

/// What both hold; nothing if they are apart.
[[nodiscard]] ZELK_EXPORT std::optional<Interval> intersection(Interval const& a,
                                                               Interval const& b);

}  // namespace zelk::real
