#include "zelk/approx/internal/maclaurin.h"

#include <cassert>

#include "zelk/approx/internal/power_terms.h"
#include "zelk/approx/internal/tolerance.h"
#include "zelk/numbers/integer.h"
#include "zelk/numbers/internal/leading_bits.h"
#include "zelk/work/poll.h"

namespace zelk::na {

namespace {

using ApproxData = PowerSeriesApproximator::ApproxData;
using Bounds = PowerSeriesApproximator::Bounds;

/// S T / (1 - T) < 1/reciprocal, for S = s/d > 0 and T = t/d with 0 < t and d_minus_t = d - t > 0.
bool tail_below(mpz_srcptr s, mpz_srcptr t, mpz_srcptr d, mpz_srcptr d_minus_t,
                mpz_srcptr reciprocal) {
  int const verdict = compare(LeadingBits(s) * LeadingBits(t) * LeadingBits(reciprocal),
                              LeadingBits(d) * LeadingBits(d_minus_t));
  if (verdict != 0) return verdict < 0;
  Integer left;
  Integer right;
  mpz_mul(left, s, t);
  mpz_mul(left, left, reciprocal);
  mpz_mul(right, d, d_minus_t);
  return mpz_cmp(left, right) < 0;
}

/// |a| > |b|, decided on integers. Requires: neither is 0.
bool exceeds(QNumber const& a, QNumber const& b) {
  assert(!a.is_zero() && !b.is_zero());
  Integer left;
  Integer right;
  return compare_products(a.numerator(), b.denominator(), b.numerator(), a.denominator(), left,
                          right) > 0;
}

/// The sums before and after a term of index k, the lesser first: for x < 0 the terms of odd index
/// are negative.
Bounds ascending(int k, QNumber const& before, QNumber const& after) {
  return k % 2 != 0 ? Bounds(after, before) : Bounds(before, after);
}

/// After so many steps on integers it is worth finding out how many more cannot end the series, and
/// worth taking that many together.
constexpr unsigned patience = 32;

/// How many steps are to be taken together: the terms that they come to, and the two after them,
/// are certainly not below the tolerance.
unsigned idle_steps(PowerTerms const& series, QNumber const& x, mpz_srcptr reciprocal) {
  unsigned const certain = series.certain_terms(x, reciprocal);
  return certain > patience ? certain - 2 : 0;
}

/// Before a step by so many terms: for each a few passes over the digits.
void poll_step(PowerTerms const& terms, unsigned count) {
  work::poll(5 * count * work::pass(work::bits_of(terms.denominator())), count);
}

/// Takes `sum_exp` over after its test of k, when T_k and S_k are in big form, and with them the
/// result of every operation to come: the same tests, decided on integers.
ApproxData continue_exp(QNumber const& x, mpz_srcptr reciprocal, int k, QNumber const& term,
                        QNumber const& sum, QNumber const& previous) {
  PowerTerms series(static_cast<unsigned>(k), term, sum);
  mpz_srcptr const s = series.sum(0);
  mpz_srcptr const t = series.term();
  mpz_srcptr const d = series.denominator();
  bool const is_positive = x.sign() > 0;
  int sign_before = previous.sign();
  int sign = sum.sign();
  auto const step = [&](PowerTerms& terms) {
    poll_step(terms, 1);
    terms.accumulate(0, false);
    ++k;
    QNumber const factor = x / QNumber(k);
    terms.advance(factor.numerator(), factor.denominator());
  };
  for (unsigned steps = 1;; ++steps) {
    if (steps == patience) {
      take_steps(series, idle_steps(series, x, reciprocal), step);
      sign = mpz_sgn(s);  // that of the sum before decides nothing: the next term is too great
    }
    step(series);
    int const second_previous = sign_before;
    sign_before = sign;
    sign = mpz_sgn(s);
    // The sum that is the second derivative of the lower bound's polynomial must be positive.
    if ((is_positive || k % 2 == 0 ? second_previous : sign_before) <= 0) continue;
    // |T_k| must be less than the tolerance; for x > 0 too, where it is less than the width.
    if (!series.term_below(reciprocal)) continue;

    Integer rest;
    mpz_sub(rest, d, t);
    if (is_positive && !tail_below(s, t, d, rest, reciprocal)) continue;

    Integer last;
    Integer before;
    QNumber const factor = x / QNumber(k);
    series.last_term(last, factor.numerator(), factor.denominator());
    mpz_sub(before, s, last);
    IntegerView const q = x.denominator();
    QNumber const partial = series.reduced(s, q, 1);
    QNumber const partial_before = series.reduced(before, q, 2);
    if (is_positive) {
      Integer rest_before;
      mpz_sub(rest_before, d, last);
      return {{partial, QNumber::big_from_mpz(s, rest)},
              {partial_before, QNumber::big_from_mpz(before, rest_before)},
              k};
    }
    mpz_add(rest, s, t);
    return {ascending(k, partial, series.reduced(rest, q, 0)),
            ascending(k, partial_before, partial), k};
  }
}

/// Takes `sum_sin` over after its test of n, when the terms to be added next are in big form, and
/// with them the result of every operation to come. It goes on from T_(n+1) = `cosine_term` and the
/// sums so far, from which the next terms are taken away if `negated`.
ApproxData continue_sin(QNumber const& x, mpz_srcptr reciprocal, unsigned n, bool negated,
                        QNumber const& cosine_term, QNumber const& sine, QNumber const& cosine) {
  PowerTerms series(n + 1, cosine_term, sine, cosine);
  IntegerView const p = x.numerator();
  IntegerView const q = x.denominator();
  Integer below;
  auto const advance_to = [&](PowerTerms& terms, unsigned k) {
    mpz_mul_ui(below, q, k);
    terms.advance(p, below);
  };
  auto const step = [&](PowerTerms& terms) {
    poll_step(terms, 2);
    n += 2;
    terms.accumulate(1, negated);
    advance_to(terms, n);
    terms.accumulate(0, negated);
    advance_to(terms, n + 1);
    negated = !negated;
    // Numbers would divide by n + 1, and by n + 2 for the term after, both by way of reciprocals.
    detail::cached_gcd(1, n + 1L);
    detail::cached_gcd(1, n + 2L);
  };
  for (unsigned steps = 1;; ++steps) {
    if (steps == patience / 2) take_steps(series, idle_steps(series, x, reciprocal) / 2, step);
    // The second derivative is minus the sine's sum so far, give or take the cosine's next term.
    bool const is_certain = mpz_cmpabs(series.sum(0), series.term()) > 0;
    step(series);
    if (!is_certain || !series.term_below(reciprocal)) continue;

    Integer sine_error;
    Integer cosine_error;
    mpz_abs(sine_error, series.term());
    series.last_term(cosine_error, p, below);
    mpz_abs(cosine_error, cosine_error);
    auto const around = [&](mpz_srcptr centre, mpz_srcptr error, unsigned missing) {
      Integer lower;
      Integer upper;
      mpz_sub(lower, centre, error);
      mpz_add(upper, centre, error);
      return Bounds(series.reduced(lower, q, missing), series.reduced(upper, q, missing));
    };
    return {around(series.sum(0), sine_error, 0), around(series.sum(1), cosine_error, 1),
            static_cast<int>(n)};
  }
}

}  // namespace

/// With T_j = x^j/j! and S_k = T_0 + ... + T_(k-1). For x > 0 and T_k < 1 the tail from T_k on is
/// at most T_k e^x, hence S_k < e^x <= S_k / (1 - T_k). For x < 0 and |T_k| < 1 the terms shrink
/// and alternate from T_k on, hence e^x lies between S_k and S_(k+1). No summation stops before
/// the second derivative of the lower bound's polynomial, a partial sum itself, is positive.
ApproxData sum_exp(QNumber const& x, unsigned prec) {
  QNumber const zero(0);
  QNumber const one(1);
  if (x.is_zero()) return {{one, one}, {one, one}, 0};
  QNumber const tolerance = tolerance_of(prec);

  QNumber sum = one;        // S_k
  QNumber previous;         // S_(k-1)
  QNumber second_previous;  // S_(k-2)
  QNumber term = x;         // T_k
  QNumber last_term;        // T_(k-1)
  for (int k = 2;; ++k) {
    second_previous = previous;
    previous = sum;
    sum += term;
    last_term = term;
    term *= x / QNumber(k);

    if (zero < x) {
      if (term < one && zero < second_previous && sum / (one - term) - sum < tolerance)
        return {{sum, sum / (one - term)}, {previous, previous / (one - last_term)}, k};
    } else if (zero < (k % 2 != 0 ? previous : second_previous) && abs(term) < tolerance) {
      return {ascending(k, sum, sum + term), ascending(k, previous, previous + last_term), k};
    }
    if (term.is_big() && sum.is_big())
      return continue_exp(x, tolerance.denominator(), k, term, sum, previous);
  }
}

/// The polynomials of sin, of cos and of sin'' = -sin side by side, each with the next power as
/// its remainder bound (Taylor's formula, with all derivatives at most 1 in size).
///
/// Stops when the sine is within the tolerance and the sign of the second derivative is certain.
/// For 0 < |x| < pi that sign is opposite to x's; since sin x is irrational for every rational x
/// but 0, it becomes certain everywhere else too.
ApproxData sum_sin(QNumber const& x, unsigned prec) {
  QNumber const zero(0);
  QNumber const one(1);
  if (x.is_zero()) return {{zero, zero}, {one, one}, 0};
  QNumber const tolerance = tolerance_of(prec);

  QNumber sine;
  QNumber cosine;
  QNumber second;  // derivative of the sine
  QNumber sign = one;
  QNumber sine_term = x;
  QNumber cosine_term = one;
  QNumber second_term;
  for (unsigned n = 1;; n += 2) {
    second += sign * second_term;
    cosine += sign * cosine_term;
    sine += sign * sine_term;
    QNumber const second_error = abs(cosine_term);
    QNumber const cosine_error = abs(sine_term);
    second_term = sine_term;
    cosine_term = sine_term * x / QNumber(n + 1);
    QNumber const sine_error = abs(cosine_term);
    sine_term = cosine_term * x / QNumber(n + 2);
    sign.negate();

    bool const is_certain =
        (zero < x ? second + second_error < zero : zero < second - second_error) ||
        // Where the sine has not the sign of x.
        (second.sign() == x.sign() && exceeds(second, second_error));
    if (is_certain && sine_error < tolerance)
      return {{sine - sine_error, sine + sine_error},
              {cosine - cosine_error, cosine + cosine_error},
              static_cast<int>(n)};
    if (second_term.is_big())
      return continue_sin(x, tolerance.denominator(), n, sign.sign() < 0, cosine_term, sine,
                          cosine);
  }
}

}  // namespace zelk::na
