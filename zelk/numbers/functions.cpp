#include "zelk/numbers/functions.h"

#include <bit>

#include "zelk/numbers/errors.h"
#include "zelk/numbers/integer.h"
#include "zelk/work/poll.h"

namespace zelk::detail {

namespace {

QNumber from_integer(mpz_srcptr n) { return QNumber::from_lowest_terms({n, IntegerView(1L)}); }

/// n/d by one of GMP's divisions.
QNumber divided(decltype(mpz_fdiv_q)* divide, mpz_srcptr n, mpz_srcptr d) {
  Integer quotient;
  divide(quotient, n, d);
  return from_integer(quotient);
}

/// n^exponent; a long one from the leading bit of the exponent on, so that it can be stopped.
void raise(Integer& out, mpz_srcptr n, unsigned long exponent) {
  constexpr double most_bits_at_once = 1 << 17;
  if (work::bits_of(n) * static_cast<double>(exponent) <= most_bits_at_once || mpz_sgn(n) == 0) {
    mpz_pow_ui(out, n, exponent);
    return;
  }
  // Zeros are not multiplied, and powers of two are nothing else.
  Integer odd;
  auto const zeros = mpz_scan1(n, 0);
  mpz_tdiv_q_2exp(odd, n, zeros);
  if (mpz_cmpabs_ui(odd, 1) == 0) {
    mpz_pow_ui(out, n, exponent);
    return;
  }
  mpz_set(out, odd);
  for (int bit = static_cast<int>(std::bit_width(exponent)) - 2; bit >= 0; --bit) {
    work::poll(4 * work::product(work::bits_of(out)));
    mpz_mul(out, out, out);
    if ((exponent >> bit & 1) != 0) mpz_mul(out, out, odd);
  }
  mpz_mul_2exp(out, out, zeros * exponent);
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
  raise(n, q.numerator(), magnitude);
  raise(d, q.denominator(), magnitude);
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
