#include "zelk/approx/power_series_approximator.h"

namespace zelk::na {

namespace {

using Bounds = PowerSeriesApproximator::Bounds;
using ApproxData = PowerSeriesApproximator::ApproxData;

/// 10^-prec.
QNumber tolerance_of(unsigned prec) {
  QNumber const ten(10);
  QNumber power(1);
  for (unsigned i = 0; i < prec; ++i) power *= ten;
  return power.inv();
}

/// With T_j = x^j/j! and S_k = T_0 + ... + T_(k-1), in exact arithmetic throughout. For x > 0 and
/// T_k < 1 the tail from T_k on is at most T_k e^x, hence S_k < e^x <= S_k / (1 - T_k). For x < 0
/// and |T_k| < 1 the terms shrink and alternate from T_k on, hence e^x lies between S_k and
/// S_(k+1). No summation stops before the second derivative of the lower bound's polynomial, a
/// partial sum itself, is certainly positive.
ApproxData sum_exp(QNumber const& x, unsigned prec) {
  QNumber const zero(0);
  QNumber const one(1);
  if (x.is_zero()) return {{one, one}, {one, one}, 0};
  QNumber const tolerance = tolerance_of(prec);

  QNumber sum = one;       // S_k
  QNumber previous;        // S_(k-1)
  QNumber second_previous; // S_(k-2)
  QNumber term = x;        // T_k
  QNumber last_term;       // T_(k-1)
  for (int k = 2;; ++k) {
    second_previous = previous;
    previous = sum;
    sum += term;
    last_term = term;
    term *= x / QNumber(k);

    if (zero < x) {
      if (term < one && zero < second_previous && sum / (one - term) - sum < tolerance)
        return {{sum, sum / (one - term)}, {previous, previous / (one - last_term)}, k};
    } else if (k % 2 != 0) {
      if (zero < previous && abs(term) < tolerance)
        return {{sum + term, sum}, {previous + last_term, previous}, k};
    } else {
      if (zero < second_previous && abs(term) < tolerance)
        return {{sum, sum + term}, {previous, previous + last_term}, k};
    }
  }
}

/// The polynomials of sin, of cos and of sin'' = -sin side by side, each with the next power as
/// its remainder bound (Taylor's formula with all derivatives at most 1).
///
/// Stops when the sine is within the tolerance and the sign of the second derivative is certain.
/// For 0 < |x| < pi that sign is opposite to x's; it is certified on either side, and since sin x
/// is irrational for every rational x but 0, on one side it always is in the end.
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
    QNumber const next(n + 1);
    second += sign * second_term;
    cosine += sign * cosine_term;
    sine += sign * sine_term;
    QNumber const second_error = abs(cosine_term);
    QNumber const cosine_error = abs(sine_term);
    QNumber const sine_error = abs(sine_term * x / next);
    sign.negate();
    second_term = sine_term;
    cosine_term = second_term * x / next;
    sine_term = cosine_term * x / QNumber(n + 2);

    // Only the side that the second derivative's own sign points to can be certain.
    bool const certain = second.sign() < 0 ? second + second_error < zero
                                           : zero < second - second_error;
    if (certain && sine_error < tolerance)
      return {{sine - sine_error, sine + sine_error},
              {cosine - cosine_error, cosine + cosine_error},
              static_cast<int>(n)};
  }
}

/// Two successive partial sums of Machin's formula, term by term, at most `tolerance` apart: the
/// terms alternate and shrink, so pi lies between them.
Bounds sum_machin(QNumber const& tolerance) {
  QNumber const step_5(1, 25);
  QNumber const step_239 = QNumber(1, 239) * QNumber(1, 239);
  QNumber power_5 = QNumber(16) * QNumber(1, 5);      // 16/5^(2k+1)
  QNumber power_239 = QNumber(4) * QNumber(1, 239);   // 4/239^(2k+1)
  QNumber term = power_5 - power_239;
  QNumber sum;
  QNumber sign(1);
  for (unsigned k = 0;; ++k) {
    sum += sign * term;
    if (term == tolerance || term < tolerance) {
      if (k % 2 != 0) return {sum, sum + term};
      return {sum - term, sum};
    }
    power_5 *= step_5;
    power_239 *= step_239;
    term = (power_5 - power_239) / QNumber(2 * k + 3);
    sign.negate();
  }
}

/// The convergents of the two ends at the least common length that still enclose, and no wider
/// than `tolerance`. Ends at the latest with the ends themselves.
Bounds simplify(RationalApproximator& approximator, Bounds const& ends, QNumber const& tolerance) {
  auto const at_most = [](QNumber const& a, QNumber const& b) { return a == b || a < b; };
  for (unsigned terms = 1;; ++terms) {
    Bounds const simple(approximator.do_approx(ends.first, terms),
                        approximator.do_approx(ends.second, terms));
    if (at_most(simple.first, ends.first) && at_most(ends.second, simple.second) &&
        at_most(simple.second - simple.first, tolerance))
      return simple;
  }
}

/// Puts a finished record under its key: no entry is ever seen half made.
template <class Cache, class Key, class Record>
void store(Cache& cache, Key const& key, Record const& record) {
  auto const [entry, added] = cache.insert({key, record});
  if (!added) entry.node->value.second = record;
}

/// The record under `key`, made by `compute` on the first request.
template <class Cache, class Key, class Compute>
auto const& answer(Cache& cache, Key const& key, Compute compute) {
  if (auto const known = cache.find(key); known != cache.end()) return known.node->value.second;
  compute();
  return cache[key];
}

}  // namespace

Bounds PowerSeriesApproximator::maclaurin_exp_bounds(QNumber const& x, unsigned prec) {
  return exp_record(x, prec).bounds;
}

Bounds PowerSeriesApproximator::maclaurin_exp_der_bounds(QNumber const& x, unsigned prec) {
  return exp_record(x, prec).der_bounds;
}

Bounds PowerSeriesApproximator::maclaurin_sin_bounds(QNumber const& x, unsigned prec) {
  return sin_record(x, prec).bounds;
}

Bounds PowerSeriesApproximator::maclaurin_sin_der_bounds(QNumber const& x, unsigned prec) {
  return sin_record(x, prec).der_bounds;
}

Bounds PowerSeriesApproximator::machin_pi_bounds(unsigned prec) {
  return answer(pi_cache, prec, [&] { machin_pi_compute(prec); });
}

void PowerSeriesApproximator::maclaurin_exp_compute(QNumber const& x, unsigned prec) {
  store(exp_cache, std::pair(x, prec), sum_exp(x, prec));
}

void PowerSeriesApproximator::maclaurin_sin_compute(QNumber const& x, unsigned prec) {
  store(sin_cache, std::pair(x, prec), sum_sin(x, prec));
}

void PowerSeriesApproximator::machin_pi_compute(unsigned prec) {
  QNumber const tolerance = tolerance_of(prec);
  store(pi_cache, prec, simplify(rational_approx, sum_machin(tolerance), tolerance));
}

PowerSeriesApproximator::ApproxData const& PowerSeriesApproximator::exp_record(QNumber const& x,
                                                                               unsigned prec) {
  return answer(exp_cache, std::pair(x, prec), [&] { maclaurin_exp_compute(x, prec); });
}

PowerSeriesApproximator::ApproxData const& PowerSeriesApproximator::sin_record(QNumber const& x,
                                                                               unsigned prec) {
  return answer(sin_cache, std::pair(x, prec), [&] { maclaurin_sin_compute(x, prec); });
}

}  // namespace zelk::na
