#pragma once

#include <utility>

#include "tests/support/plain_approx.h"
#include "tests/support/random_number.h"
#include "zelk/approx/power_series_approximator.h"

/// The series as their definitions read, every value by the number's own operators and each
/// operation in its place: slow, and the measure of values, forms and of the table of gcds for
/// every shortcut.
namespace zelk::plain {

using ApproxData = na::PowerSeriesApproximator::ApproxData;
using Bounds = na::PowerSeriesApproximator::Bounds;

inline QNumber tolerance(unsigned prec) {
  QNumber power(1);
  for (; prec > 0; --prec) power *= QNumber(10);
  return power.inv();
}

/// exp at x, by the sums S_k = x^0/0! + ... + x^(k-1)/(k-1)! and the terms T_k = x^k/k!.
inline ApproxData exp_record(QNumber const& x, unsigned prec) {
  QNumber const zero(0), one(1);
  if (x == zero) return {{one, one}, {one, one}, 0};
  QNumber const epsilon = tolerance(prec);
  QNumber s2, s1, s = one;  // S_(k-2), S_(k-1), S_k
  QNumber t1, t = x;        // T_(k-1), T_k
  for (int k = 2;; ++k) {
    s2 = s1;
    s1 = s;
    s += t;
    t1 = t;
    t *= x / QNumber(k);
    bool const odd = k % 2 != 0;
    if (zero < x && t < one && zero < s2 && s / (one - t) - s < epsilon)
      return {{s, s / (one - t)}, {s1, s1 / (one - t1)}, k};
    if (x < zero && odd && zero < s1 && abs(t) < epsilon) return {{s + t, s}, {s1 + t1, s1}, k};
    if (x < zero && !odd && zero < s2 && abs(t) < epsilon) return {{s, s + t}, {s1, s1 + t1}, k};
  }
}

/// sin at x, by the polynomials s of sin, c of cos and d of -sin, until the sine is within the
/// tolerance and the second derivative has certainly not the sign of x; or certainly has it, where
/// the sine has not.
inline ApproxData sin_record(QNumber const& x, unsigned prec) {
  QNumber const zero(0), one(1);
  if (x == zero) return {{zero, zero}, {one, one}, 0};
  QNumber const epsilon = tolerance(prec);
  QNumber s, c, d, s_error, c_error, d_error, sign = one;
  QNumber a, u = one, t = x;  // x^(n-2)/(n-2)!, x^(n-1)/(n-1)!, x^n/n!
  for (unsigned n = 1;; n += 2) {
    d += sign * a;
    c += sign * u;
    s += sign * t;
    d_error = abs(u);
    c_error = abs(t);
    s_error = abs(t * x / QNumber(n + 1));
    sign.negate();
    a = t;
    u = a * x / QNumber(n + 1);
    t = u * x / QNumber(n + 2);
    bool const opposite = zero < x ? d + d_error < zero : zero < d - d_error;
    bool const same =
        d.sign() == x.sign() && abs(test::to_rational(d)) > test::to_rational(d_error);
    if ((opposite || same) && s_error < epsilon)
      return {{s - s_error, s + s_error}, {c - c_error, c + c_error}, static_cast<int>(n)};
  }
}

/// The last two partial sums of pi = 16 arctan(1/5) - 4 arctan(1/239), the lesser first.
inline Bounds machin_ends(QNumber const& epsilon) {
  QNumber a = QNumber(16) * QNumber(1, 5);
  QNumber b = QNumber(4) * QNumber(1, 239);
  QNumber t = a - b, sum, sign(1);
  for (unsigned k = 0;; ++k) {
    sum += sign * t;
    if (t == epsilon || t < epsilon)
      return k % 2 != 0 ? Bounds(sum, sum + t) : Bounds(sum - t, sum);
    a *= QNumber(1, 25);
    b *= QNumber(1, 239) * QNumber(1, 239);
    t = (a - b) / QNumber(2 * k + 3);
    sign.negate();
  }
}

inline Bounds pi_bounds(RationalApproximator& rational, unsigned prec) {
  QNumber const epsilon = tolerance(prec);
  auto const [low, high] = machin_ends(epsilon);
  QNumber a, b;
  for (unsigned m = 1;; ++m) {
    a = rational.do_approx(low, m);
    b = rational.do_approx(high, m);
    if (!(a == low || a < low)) continue;
    if (!(b == high || high < b)) continue;
    if (b - a == epsilon || b - a < epsilon) return {a, b};
  }
}

/// The answer as every query finds it: known already, or computed, stored and taken from there.
template <class Cache, class Key, class Compute>
auto answer(Cache& cache, Key const& key, Compute compute) {
  if (auto const known = cache.find(key); known.node != nullptr) return known.node->value.second;
  auto const record = compute();
  cache[key] = record;
  return cache[key];
}

}  // namespace zelk::plain
