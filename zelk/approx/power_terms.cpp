#include "zelk/approx/power_terms.h"

#include "zelk/approx/common_denominator.h"
#include "zelk/numbers/leading_bits.h"

namespace zelk::na {

PowerTerms::PowerTerms(QNumber const& x, unsigned index, QNumber const& term, QNumber const& sum0,
                       QNumber const& sum1)
    : p(x.numerator()), q(x.denominator()), start(index) {
  least_common_denominator(d, term, sum0, sum1);
  put_over(d, term, t);
  put_over(d, sum0, sums[0]);
  put_over(d, sum1, sums[1]);
}

void PowerTerms::advance() {
  ++j;
  mpz_mul_ui(factor, q, j);
  mpz_mul(t, t, p);
  mpz_mul(d, d, factor);
  for (auto& s : sums) mpz_mul(s, s, factor);
}

void PowerTerms::accumulate(std::size_t i, bool negated) {
  auto const add = negated ? mpz_sub : mpz_add;
  add(sums[i], sums[i], t);
}

bool PowerTerms::term_below(mpz_srcptr reciprocal) {
  Integer left;
  Integer right;
  return compare_products(t, reciprocal, d, IntegerView(1), left, right) < 0;
}

void PowerTerms::last_term(mpz_ptr numerator) {
  mpz_divexact(numerator, t, p);
  mpz_mul(numerator, numerator, factor);
}

QNumber PowerTerms::reduced(mpz_srcptr numerator) {
  Integer common, n, denominator;
  if (mpz_sgn(cancellable.get()) == 0) {
    mpz_pow_ui(common, q, j - start);
    mpz_divexact(cancellable, d, common);
  }
  mpz_gcd(common, numerator, cancellable);
  mpz_divexact(n, numerator, common);
  mpz_divexact(denominator, d, common);
  return QNumber(QNumber::LowestTerms{n, denominator});
}

}  // namespace zelk::na
