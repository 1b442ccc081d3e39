#pragma once

#include <vector>

#include "zelk/approx/internal/quotient_matrix.h"
#include "zelk/approx/internal/ratio.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// The continued fraction of all numbers between two ends at once, as far as they share it: the
/// quotients split off so far, and the interval of what they leave.
///
/// Requires: lower <= upper, both finite while quotients are split off.
///
/// Proofs: docs/mathematics.md, section 13.
struct IntervalExpansion {
  IntervalExpansion() = default;
  IntervalExpansion(mpz_srcptr lower_n, mpz_srcptr lower_d, mpz_srcptr upper_n, mpz_srcptr upper_d)
      : lower(lower_n, lower_d), upper(upper_n, upper_d) {}

  /// Splits off the next quotient, the floor of both ends. False, and nothing done, if the closed
  /// interval holds an integer.
  bool split();

  /// Splits for as long as that is possible.
  ///
  /// Cost: with ends of n bits O(M(n) log n), where M(n) is the time of GMP's multiplication; small
  /// ones, up to some thousand bits, by words from the leading bits.
  void split_all();

  /// Splits off `quotient`, whatever the interval holds; what it leaves of the ends, over their
  /// denominators, is turned over and exchanged. All three arguments change.
  void split_off(Integer& quotient, Integer& lower_rest, Integer& upper_rest);

  Ratio lower, upper;
  QuotientMatrix prefix;
  std::vector<QNumber>* terms = nullptr;  ///< Takes every quotient, if there is one.
  Integer scratch;                        ///< Holds nothing from one call to the next.

 private:
  bool split_leading_word();
  bool split_leading(mp_bitcnt_t bits);
  template <class Matrix>
  void append(Matrix const& matrix);
};

}  // namespace zelk::na
