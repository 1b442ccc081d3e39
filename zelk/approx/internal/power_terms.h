#pragma once

#include <array>
#include <cstddef>

#include "zelk/numbers/integer.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// The terms T_j = x^j/j! and two partial sums of them, as integers over one common denominator
/// d_j. The step from T_(j-1) to T_j multiplies the term by x/j and d by the denominator of that
/// factor. Nothing is reduced to lowest terms before it is asked for as a number: a step costs a
/// few passes over the digits.
///
/// What cancels at the end, for x = p/q: a prime of q divides the denominator of T_m exactly as
/// often as m! q^m, more often than that of any term before, and so also that of a sum with the
/// last term T_m. It divides d_j as often as j! q^j. Hence q^(j-m) cancels, and after that only
/// primes up to j (docs/mathematics.md, section 9).
class PowerTerms {
 public:
  /// Starts with T_j = term for j = index. Requires: x is not 0 and outlives this object; the sums
  /// are of terms before T_j, each with a sign.
  PowerTerms(QNumber const& x, unsigned index, QNumber const& term, QNumber const& sum0,
             QNumber const& sum1 = QNumber());

  /// From T_(j-1) to T_j = T_(j-1) above/below; the sums keep their values.
  /// Requires: above/below = x/j; of the primes of q, above has none.
  void advance(mpz_srcptr above, mpz_srcptr below);

  /// Adds T_j to a sum, or takes it away.
  void accumulate(std::size_t i, bool negated);

  /// |T_j| < 1/reciprocal. Requires: reciprocal > 0.
  bool term_below(mpz_srcptr reciprocal);

  /// The numerators over `denominator()`.
  mpz_srcptr term() const { return t; }
  mpz_srcptr sum(std::size_t i) const { return sums[i]; }
  mpz_srcptr denominator() const { return d; }

  /// T_(j-1), over the denominator of T_j. Requires: advanced at least once.
  void last_term(mpz_ptr numerator);

  /// numerator/denominator() in lowest terms. Requires: it is a sum of terms T_0, T_1, ..., each
  /// with a sign, the last of them T_(j - missing).
  QNumber reduced(mpz_srcptr numerator, unsigned missing) const;

 private:
  IntegerView q;  // the denominator of x
  unsigned j;
  Integer t, d;
  std::array<Integer, 2> sums;
  Integer last_above, last_below;  // of the last step
};

}  // namespace zelk::na
