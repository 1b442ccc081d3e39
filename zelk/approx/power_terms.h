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
/// What cancels at the end: a prime of q stands below T_m as often as in m! q^m, which is more
/// often than below any term before it, and so below a sum whose last term is T_m too. The
/// denominator has it as often as j! q^j. So q^(j-m) cancels, and besides only primes up to j.
class PowerTerms {
 public:
  /// Starts with T_j = term for j = index. Requires: x is not 0 and outlives this object; the sums
  /// are of terms before T_j, each with a sign.
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

  /// numerator/denominator() in lowest terms. Requires: it is a sum of terms T_0, T_1, ..., each
  /// with a sign, the last of them T_(j - missing).
  QNumber reduced(mpz_srcptr numerator, unsigned missing) const;

 private:
  IntegerView p, q;  // x
  unsigned j;
  Integer t, d;
  std::array<Integer, 2> sums;
  Integer factor;  // of the denominator, from T_(j-1) to T_j
};

}  // namespace zelk::na
