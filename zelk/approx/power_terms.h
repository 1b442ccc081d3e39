#pragma once

#include <array>
#include <cstddef>

#include "zelk/numbers/integer.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// The terms T_j = x^j/j! and two partial sums of them, as integers over one common denominator,
/// which gains the factor j q from T_(j-1) to T_j, q being the denominator of x. Nothing is
/// reduced to lowest terms before it is asked for as a number: a step costs a few passes over the
/// digits.
///
/// A prime r of q then cancels little, for its powers below T_0, T_1, ... go up: that below a sum
/// is that below its last term T_m, m! q^m, and against j! q^j it lacks (j-m) powers of q and those
/// in j!/m!. So for m >= j-2 and a start at 2 or later the q gained since then cannot cancel.
class PowerTerms {
 public:
  /// Starts with T_j = term for j = index. Requires: x is not 0 and outlives this object, the sums
  /// end before T_j, index >= 2.
  PowerTerms(QNumber const& x, unsigned index, QNumber const& term, QNumber const& sum0,
             QNumber const& sum1 = QNumber());

  /// From T_(j-1) to T_j; the sums keep their values.
  void advance();

  /// Adds T_j to a sum, or takes it away.
  void accumulate(std::size_t i, bool negated);

  /// |T_j| < 1/reciprocal. Requires: reciprocal > 0.
  bool term_below(mpz_srcptr reciprocal);

  /// The numerators over `denominator()`.
  mpz_srcptr term() const { return t; }
  mpz_srcptr sum(std::size_t i) const { return sums[i]; }
  mpz_srcptr denominator() const { return d; }

  /// T_(j-1) = T_j j/x, over the denominator of T_j. Requires: advanced at least once.
  void last_term(mpz_ptr numerator);

  /// numerator/denominator() in lowest terms. Requires: it is a sum of terms, the last of them T_j,
  /// T_(j-1) or T_(j-2). Ends the series: there is no advance after it.
  QNumber reduced(mpz_srcptr numerator);

 private:
  IntegerView p, q;  // x
  unsigned const start;
  unsigned j = start;
  Integer t, d;
  std::array<Integer, 2> sums;
  Integer factor;       // of the denominator, from T_(j-1) to T_j
  Integer cancellable;  // at the end: the denominator without the q gained since `start`
};

}  // namespace zelk::na
