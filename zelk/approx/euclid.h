#pragma once

#include "zelk/numbers/integer.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// The continued fraction of n/d in place: each step splits off the floor and inverts what is left,
/// which is one division with remainder and an exchange.
class Euclid {
 public:
  explicit Euclid(QNumber const& q) : n(q.numerator()), d(q.denominator()) {}

  /// Whether nothing is left: n/d is 0.
  bool is_done() const { return mpz_sgn(n.get()) == 0; }

  /// Requires: not done.
  void split(mpz_ptr term) {
    mpz_fdiv_qr(term, n, n, d);
    if (!is_done()) mpz_swap(n, d);
  }

  /// What is left to expand; d is 1 when that is 0.
  QNumber::LowestTerms rest() const { return {n, d}; }

 private:
  Integer n, d;
};

}  // namespace zelk::na
