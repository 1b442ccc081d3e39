#pragma once

#include <compare>
#include <optional>
#include <span>

#include "zelk/real/interval.h"

namespace zelk::real {

/// Which signs a number may have, for all that is known. No precision tells e^x from 0 where x is
/// far enough below; its formula does.
struct Signs {
  bool negative, zero, positive;

  /// Those of the numbers in x.
  static Signs of(Interval const& x) {
    return {x.lower().sign() < 0, x.contains(0), x.upper().sign() > 0};
  }

  /// The sign, if there is only one.
  std::optional<std::strong_ordering> only() const {
    if (negative + zero + positive != 1) return std::nullopt;
    return positive <=> negative;
  }

  friend Signs operator&(Signs a, Signs b) {
    return {a.negative && b.negative, a.zero && b.zero, a.positive && b.positive};
  }

  // Those of the results of an operation.
  friend Signs operator-(Signs x) { return {x.positive, x.zero, x.negative}; }
  friend Signs operator+(Signs a, Signs b) {
    return {a.negative || b.negative,
            (a.zero && b.zero) || (a.negative && b.positive) || (a.positive && b.negative),
            a.positive || b.positive};
  }
  friend Signs operator*(Signs a, Signs b) {
    return {(a.negative && b.positive) || (a.positive && b.negative), a.zero || b.zero,
            (a.negative && b.negative) || (a.positive && b.positive)};
  }
};

using SignsOf = std::span<Signs const>;

/// Whether x is certainly not 0, although its enclosure holds 0.
inline bool is_blurred(Signs x, Interval const& enclosure) {
  return !x.zero && enclosure.sign() == 0;
}

}  // namespace zelk::real
