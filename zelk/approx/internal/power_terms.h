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
/// Many steps in a row are taken as runs of their own, in units of the term that each begins with,
/// which are joined when they have become long (`take_steps`).
///
/// What cancels at the end, for x = p/q: a prime of q divides the denominator of T_m exactly as
/// often as m! q^m, more often than that of any term before, and so also that of a sum with the
/// last term T_m. It divides d_j as often as j! q^j. Hence q^(j-m) cancels, and after that only
/// primes up to j (docs/mathematics.md, section 9).
class PowerTerms {
 public:
  /// A run: the term that it begins with is 1, and the sums are empty.
  PowerTerms() = default;

  /// Starts with T_j = term for j = index. Requires: the sums are of terms before T_j, each with a
  /// sign.
  PowerTerms(unsigned index, QNumber const& term, QNumber const& sum0,
             QNumber const& sum1 = QNumber());

  /// From T_(j-1) to T_j = T_(j-1) above/below; the sums keep their values.
  /// Requires: above/below = x/j; of the primes of q, above has none.
  void advance(mpz_srcptr above, mpz_srcptr below);

  /// Adds T_j to a sum, or takes it away.
  void accumulate(std::size_t i, bool negated);

  /// Takes the steps of a run that begins where this one ends.
  void append(PowerTerms const& run);

  /// |T_j| < 1/reciprocal. Requires: reciprocal > 0.
  bool term_below(mpz_srcptr reciprocal) const;

  /// How many of T_(j+1), T_(j+2), ... are certainly at least 1/reciprocal in size, up to the first
  /// that is not, and none beyond the greatest `int`. Leading bits can fall short of the last one
  /// that is.
  /// Requires: x is not 0, reciprocal > 0.
  unsigned certain_terms(QNumber const& x, mpz_srcptr reciprocal) const;

  /// The numerators over `denominator()`.
  mpz_srcptr term() const { return t; }
  mpz_srcptr sum(std::size_t i) const { return sums[i]; }
  mpz_srcptr denominator() const { return d; }

  /// T_(j-1), over the denominator of T_j = T_(j-1) above/below.
  void last_term(mpz_ptr numerator, mpz_srcptr above, mpz_srcptr below) const;

  /// numerator/denominator() in lowest terms. Requires: it is a sum of terms T_0, T_1, ..., each
  /// with a sign, the last of them T_(j - missing); q is the denominator of x.
  QNumber reduced(mpz_srcptr numerator, mpz_srcptr q, unsigned missing) const;

 private:
  unsigned j = 0;  // of a run, how far it has come
  Integer t{1UL}, d{1UL};
  std::array<Integer, 2> sums;
};

/// Does `step(terms)` as often as `count` says; each call goes on where the one before has left
/// off, be it with these terms or with a run. Cost: that of O(log count) products as long as the
/// result, where single steps would take `count` passes over it.
template <class Step>
void take_steps(PowerTerms& terms, unsigned count, Step const& step) {
  constexpr unsigned short_run = 32;
  if (count <= short_run) {
    for (; count != 0; --count) step(terms);
    return;
  }
  take_steps(terms, count / 2, step);
  PowerTerms run;
  take_steps(run, count - count / 2, step);
  terms.append(run);
}

}  // namespace zelk::na
