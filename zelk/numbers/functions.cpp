#include "zelk/numbers/functions.h"

#include "zelk/numbers/errors.h"
#include "zelk/numbers/integer.h"

namespace zelk::detail {

namespace {

QNumber from_integer(mpz_srcptr n) { return QNumber::from_lowest_terms({n, IntegerView(1L)}); }

/// n/d by one of GMP's divisions.
QNumber divided(decltype(mpz_fdiv_q)* divide, mpz_srcptr n, mpz_srcptr d) {
  Integer quotient;
  divide(quotient, n, d);
  return from_integer(quotient);
}

}  // namespace

QNumber numerator(QNumber const& q) { return from_integer(q.numerator()); }

QNumber denominator(QNumber const& q) { return from_integer(q.denominator()); }

QNumber floor(QNumber const& q) { return divided(mpz_fdiv_q, q.numerator(), q.denominator()); }

QNumber ceil(QNumber const& q) { return divided(mpz_cdiv_q, q.numerator(), q.denominator()); }

QNumber round(QNumber const& q) {
  // Toward zero, of a fraction farther from it by a half.
  Integer n;
  Integer d;
  mpz_mul_2exp(n, q.numerator(), 1);
  mpz_mul_2exp(d, q.denominator(), 1);
  (q.sign() < 0 ? mpz_sub : mpz_add)(n, n, q.denominator());
  return divided(mpz_tdiv_q, n, d);
}

QNumber pow(QNumber const& q, long exponent) {
  if (exponent < 0 && q.is_zero()) throw DivisionByZero("division by zero");
  unsigned long const magnitude = exponent < 0 ? ~static_cast<unsigned long>(exponent) + 1
                                               : static_cast<unsigned long>(exponent);
  // Powers of coprime integers are coprime.
  Integer n;
  Integer d;
  mpz_pow_ui(n, q.numerator(), magnitude);
  mpz_pow_ui(d, q.denominator(), magnitude);
  if (exponent < 0) {
    mpz_swap(n, d);
    if (mpz_sgn(d.get()) < 0) {
      mpz_neg(n, n);
      mpz_neg(d, d);
    }
  }
  return QNumber::from_lowest_terms({n, d});
}

}  // namespace zelk::detail
