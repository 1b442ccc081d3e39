#include "zelk/approx/machin.h"

#include "zelk/numbers/integer.h"
#include "zelk/numbers/leading_bits.h"

namespace zelk::na {

namespace {

using Bounds = PowerSeriesApproximator::Bounds;

/// Takes `sum_machin` over after its test of k, when the term is in big form, and through it both
/// ends of any later enclosure: the powers A_k = 16/5^(2k+1) and B_k = 4/239^(2k+1) and the sum,
/// as integers over a common denominator d that gains a factor 25 * 239^2 * (2k+1) with each term.
Bounds continue_machin(mpz_srcptr reciprocal, unsigned k, QNumber const& power_5,
                       QNumber const& power_239, QNumber const& sum) {
  Integer a, b, s, t, d, left, right;
  mpz_lcm(d, power_5.denominator(), power_239.denominator());
  mpz_lcm(d, d, sum.denominator());
  auto const put_over_d = [&](QNumber const& q, mpz_ptr numerator) {
    mpz_divexact(numerator, d, q.denominator());
    mpz_mul(numerator, numerator, q.numerator());
  };
  put_over_d(power_5, a);
  put_over_d(power_239, b);
  put_over_d(sum, s);
  for (;;) {
    ++k;
    unsigned long const odd = 2UL * k + 1;
    mpz_mul_ui(a, a, 239 * 239);
    mpz_mul_ui(b, b, 25);
    mpz_sub(t, a, b);
    mpz_mul_ui(a, a, odd);
    mpz_mul_ui(b, b, odd);
    mpz_mul_ui(s, s, 25 * 239 * 239 * odd);
    mpz_mul_ui(d, d, 25 * 239 * 239 * odd);
    bool const subtracted = k % 2 != 0;
    (subtracted ? mpz_sub : mpz_add)(s, s, t);
    if (compare_products(t, reciprocal, d, IntegerView(1), left, right) > 0) continue;

    // The partial sum before this one, on the other side of pi.
    (subtracted ? mpz_add : mpz_sub)(t, s, t);
    QNumber const last = QNumber::big_from_mpz(s, d);
    QNumber const previous = QNumber::big_from_mpz(t, d);
    return subtracted ? Bounds(last, previous) : Bounds(previous, last);
  }
}

}  // namespace

Bounds sum_machin(QNumber const& tolerance) {
  QNumber const step_5(1, 25);
  QNumber const step_239 = QNumber(1, 239) * QNumber(1, 239);
  QNumber power_5 = QNumber(16) * QNumber(1, 5);     // 16/5^(2k+1)
  QNumber power_239 = QNumber(4) * QNumber(1, 239);  // 4/239^(2k+1)
  QNumber term = power_5 - power_239;
  QNumber sum;
  QNumber sign(1);
  for (unsigned k = 0;; ++k) {
    sum += sign * term;
    if (term == tolerance || term < tolerance) {
      if (k % 2 != 0) return {sum, sum + term};
      return {sum - term, sum};
    }
    if (term.is_big()) return continue_machin(tolerance.denominator(), k, power_5, power_239, sum);
    power_5 *= step_5;
    power_239 *= step_239;
    term = (power_5 - power_239) / QNumber(2 * k + 3);
    sign.negate();
  }
}

}  // namespace zelk::na
