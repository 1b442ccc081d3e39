#pragma once

#include "zelk/numbers/integer.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// A fraction as a computation leaves it: not in lowest terms, with d >= 0; d = 0 < n is infinity.
struct Ratio {
  Ratio() = default;
  Ratio(mpz_srcptr numerator, mpz_srcptr denominator) : n(numerator), d(denominator) {}
  explicit Ratio(QNumber const& q) : Ratio(q.numerator(), q.denominator()) {}

  /// Becomes a + b.
  void set_sum(QNumber const& a, QNumber const& b) { combine(a, b, mpz_addmul); }
  /// Becomes a - b.
  void set_difference(QNumber const& a, QNumber const& b) { combine(a, b, mpz_submul); }

  void swap(Ratio& other) {
    mpz_swap(n, other.n);
    mpz_swap(d, other.d);
  }

  Integer n, d;

 private:
  void combine(QNumber const& a, QNumber const& b, decltype(mpz_addmul)* accumulate) {
    mpz_mul(n, a.numerator(), b.denominator());
    accumulate(n, b.numerator(), a.denominator());
    mpz_mul(d, a.denominator(), b.denominator());
  }
};

}  // namespace zelk::na
