#include "zelk/approx/internal/machin.h"

#include "zelk/approx/internal/common_denominator.h"
#include "zelk/numbers/integer.h"
#include "zelk/numbers/internal/leading_bits.h"
#include "zelk/work/poll.h"

namespace zelk::na {

namespace {

using Bounds = PowerSeriesApproximator::Bounds;

constexpr unsigned long step_5 = 25;
constexpr unsigned long step_239 = 239UL * 239;

/// Takes `sum_machin` over after its test of k, when A_k = 16/5^(2k+1) is in big form, and with it
/// B_k = 4/239^(2k+1), the term, and the result of every operation to come. The powers and the sum
/// go on as integers over a common denominator d, which gains a factor 25 * 239^2 * (2k+1) with
/// each term.
Bounds continue_machin(mpz_srcptr reciprocal, unsigned k, QNumber const& power_5,
                       QNumber const& power_239, QNumber const& sum) {
  Integer a, b, s, t, d, left, right;
  least_common_denominator(d, power_5, power_239, sum);
  put_over(d, power_5, a);
  put_over(d, power_239, b);
  put_over(d, sum, s);
  for (;;) {
    work::poll(10 * work::pass(work::bits_of(d)), 1);
    ++k;
    unsigned long const odd = 2UL * k + 1;
    unsigned long const factor = step_5 * step_239 * odd;
    mpz_mul_ui(a, a, step_239);
    mpz_mul_ui(b, b, step_5);
    mpz_sub(t, a, b);
    detail::cached_gcd(1, static_cast<long>(odd));  // numbers divide by way of the reciprocal
    mpz_mul_ui(a, a, odd);
    mpz_mul_ui(b, b, odd);
    mpz_mul_ui(s, s, factor);
    mpz_mul_ui(d, d, factor);
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
  QNumber const by_5(1, 25);
  QNumber const by_239 = QNumber(1, 239) * QNumber(1, 239);
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
    if (power_5.is_big())
      return continue_machin(tolerance.denominator(), k, power_5, power_239, sum);
    power_5 *= by_5;
    power_239 *= by_239;
    term = (power_5 - power_239) / QNumber(2 * k + 3);
    sign.negate();
  }
}

}  // namespace zelk::na
