#include "zelk/approx/power_series_approximator.h"

#include "zelk/approx/internal/convergent_walk.h"
#include "zelk/approx/internal/machin.h"
#include "zelk/approx/internal/maclaurin.h"
#include "zelk/approx/internal/tolerance.h"

namespace zelk::na {

namespace {

using Bounds = PowerSeriesApproximator::Bounds;
using PointKey = hsh::pair_hash_eq::View;

/// The convergents of the two ends at the least common length that still enclose what lies
/// between them, and no wider than `tolerance`. Ends at the latest with the ends themselves.
Bounds simplify(RationalApproximator& approximator, Bounds const& ends, QNumber const& tolerance) {
  auto const& [low, high] = ends;
  ConvergentWalk lower(approximator, low, 1);
  ConvergentWalk upper(approximator, high, 1);
  for (;;) {
    QNumber const& a = lower.next();
    QNumber const& b = upper.next();
    if (!(a == low || lower.is_below(a)) || !(b == high || upper.is_above(b))) continue;
    QNumber const width = b - a;
    if (width == tolerance || width < tolerance) return {a, b};
  }
}

/// The record under `key`, made by `compute` on the first request, which then takes it by
/// `operator[]`: the map may grow once more here.
template <class Cache, class Key, class Compute>
auto const& answer(Cache& cache, Key const& key, Compute compute) {
  if (auto const known = cache.find_by(key); known != cache.end()) return known.node->value.second;
  compute();
  return cache.get_by(key);
}

}  // namespace

inline PowerSeriesApproximator::ApproxData const& PowerSeriesApproximator::exp_record(
    QNumber const& x, unsigned prec) {
  return answer(exp_cache, PointKey(x, prec), [&] { maclaurin_exp_compute(x, prec); });
}

inline PowerSeriesApproximator::ApproxData const& PowerSeriesApproximator::sin_record(
    QNumber const& x, unsigned prec) {
  return answer(sin_cache, PointKey(x, prec), [&] { maclaurin_sin_compute(x, prec); });
}

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
  exp_cache.store(PointKey(x, prec), sum_exp(x, prec));
}

void PowerSeriesApproximator::maclaurin_sin_compute(QNumber const& x, unsigned prec) {
  sin_cache.store(PointKey(x, prec), sum_sin(x, prec));
}

void PowerSeriesApproximator::machin_pi_compute(unsigned prec) {
  QNumber const tolerance = tolerance_of(prec);
  pi_cache.store(prec, simplify(rational_approx, sum_machin(tolerance), tolerance));
}

}  // namespace zelk::na
