#pragma once

#include <cmath>

#include "zelk/verify/verify.h"

namespace zelk::verify {

/// Why a claim does not follow.
struct Rejected {
  char const* reason;
};

inline void need(bool condition, char const* reason) {
  if (!condition) throw Rejected{reason};
}

/// What may still be done. A unit is an integer, and all numbers here are far below 2^53 or beyond
/// every limit, so that doubles count exactly.
class Budget {
 public:
  /// One that only counts has everything counted, and nothing done that it is counted for.
  explicit Budget(Limits const& limits, bool is_only_counting)
      : left(limits.work), counts_only(is_only_counting) {}

  bool only_counts() const { return counts_only; }

  /// Counts so many products and divisions of so many bits, before they are done.
  void spend(double products, double bits, double divisions = 0) {
    left -= products * bits * std::floor(std::sqrt(bits)) + std::floor(divisions * bits * bits / 8);
    need(left >= 0, "too much work");
  }

 private:
  double left;
  bool counts_only;
};

}  // namespace zelk::verify
