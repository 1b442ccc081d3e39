#pragma once

#include <gmp.h>

#include "zelk/approx/internal/ratio.h"
#include "zelk/numbers/integer.h"

namespace zelk::na {

/// The continued fraction of all numbers between two that are near to each other, as far as they
/// share it. As `IntervalExpansion`, but only one end is carried along: what the quotients leave of
/// the numbers beside it follows from the distance and the denominators of the convergents. The
/// numerators are not kept either.
///
/// Proofs: docs/mathematics.md, section 13.
class NarrowExpansion {
 public:
  /// Of the numbers from lower/2^places to (lower + width)/2^places.
  NarrowExpansion(mpz_srcptr lower, unsigned long width, mp_bitcnt_t places);

  /// Splits off what all share, or nearly all. False if the interval holds an integer.
  bool split_all();

  /// Sets q to the least denominator in an interval around all from (lower + first)/2^places to
  /// (lower + last)/2^places. It holds no integer either. Requires: split_all().
  void set_least_denominator(Integer& q, unsigned long first, unsigned long last);

 private:
  bool split_leading_word();
  bool split_leading(mp_bitcnt_t bits);

  /// What is left of (lower + offset)/2^places.
  void set_rest(Ratio& rest, unsigned long offset) const;

  Ratio end;  // what is left of the lower end
  unsigned long width;
  mp_bitcnt_t places;
  Integer k{1UL}, k0;  // as in QuotientMatrix, of one quotient at first
  bool is_odd = true;
  Ratio other;
  Integer scratch;
};

}  // namespace zelk::na
