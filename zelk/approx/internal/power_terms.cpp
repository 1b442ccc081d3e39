#include "zelk/approx/internal/power_terms.h"

#include <cassert>
#include <climits>

#include "zelk/approx/internal/common_denominator.h"
#include "zelk/numbers/internal/leading_bits.h"
#include "zelk/numbers/internal/lower_bound.h"
#include "zelk/work/poll.h"

namespace zelk::na {

namespace {

/// No series has more terms: their indices are `int`.
constexpr unsigned most_terms = INT_MAX;

}  // namespace

PowerTerms::PowerTerms(unsigned index, QNumber const& term, QNumber const& sum0,
                       QNumber const& sum1)
    : j(index) {
  least_common_denominator(d, term, sum0, sum1);
  put_over(d, term, t);
  put_over(d, sum0, sums[0]);
  put_over(d, sum1, sums[1]);
}

void PowerTerms::advance(mpz_srcptr above, mpz_srcptr below) {
  assert(mpz_sgn(above) != 0 && mpz_sgn(below) > 0);
  ++j;
  mpz_mul(t, t, above);
  mpz_mul(d, d, below);
  for (auto& s : sums) mpz_mul(s, s, below);
}

void PowerTerms::accumulate(std::size_t i, bool negated) {
  auto const add = negated ? mpz_sub : mpz_add;
  add(sums[i], sums[i], t);
}

void PowerTerms::append(PowerTerms const& run) {
  work::poll(6 * work::product(work::bits_of(run.d)));
  j += run.j;
  for (std::size_t i = 0; i < sums.size(); ++i) {
    mpz_mul(sums[i], sums[i], run.d);
    mpz_addmul(sums[i], t, run.sums[i]);
  }
  mpz_mul(t, t, run.t);
  mpz_mul(d, d, run.d);
}

bool PowerTerms::term_below(mpz_srcptr reciprocal) const {
  assert(mpz_sgn(reciprocal) > 0);
  Integer left;
  Integer right;
  return compare_products(t, reciprocal, d, IntegerView(1), left, right) < 0;
}

unsigned PowerTerms::certain_terms(QNumber const& x, mpz_srcptr reciprocal) const {
  LowerBound const size(x.numerator(), x.denominator());
  LowerBound bound = LowerBound(t, d) * LowerBound(reciprocal, IntegerView(1));
  unsigned index = j;
  while (index < most_terms && (bound = bound * size / (index + 1)).reaches_one()) ++index;
  return index - j;
}

void PowerTerms::last_term(mpz_ptr numerator, mpz_srcptr above, mpz_srcptr below) const {
  mpz_divexact(numerator, t, above);
  mpz_mul(numerator, numerator, below);
}

QNumber PowerTerms::reduced(mpz_srcptr numerator, mpz_srcptr q, unsigned missing) const {
  Integer n(numerator);
  Integer denominator(d.get());
  Integer common;
  auto const cancel = [&] {
    work::poll(2 * work::gcd(work::bits_of(denominator)));
    mpz_divexact(n, n, common);
    mpz_divexact(denominator, denominator, common);
  };
  mpz_pow_ui(common, q, missing);
  cancel();
  mpz_primorial_ui(common, j);  // the product of all primes up to j
  for (;;) {
    mpz_gcd(common, common, n);
    mpz_gcd(common, common, denominator);
    if (mpz_cmp_ui(common.get(), 1) == 0) break;
    cancel();
    mpz_mul(common, common, common);  // a prime of x can occur often
  }
  return QNumber(QNumber::LowestTerms{n, denominator});
}

}  // namespace zelk::na
