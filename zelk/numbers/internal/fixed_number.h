#pragma once

#include "zelk/numbers/q_number.h"

namespace zelk::detail {

// What makes numbers in big form that are never changed, as keys and values of tables: their
// digits are not in allocations of their own, and GMP does not release an integer's digits if none
// are allocated (since 6.2). Copies are like any other number.

/// Digits that stand behind the block, in one allocation with it. Requires: lowest terms.
struct FixedFraction {
  mpz_srcptr numerator;
  mpz_srcptr denominator;
};

/// Digits of another number in big form, which must keep them for as long as the new one is read.
/// Either may be destroyed first.
struct SharedDigits {
  QNumber const& number;
};

}  // namespace zelk::detail
