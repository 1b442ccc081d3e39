#include "zelk/verify/internal/series.h"

#include <algorithm>
#include <cmath>

namespace zelk::verify {

namespace {

constexpr long most_magnitude = 40;

Form sine(QNumber const&, Whole const& p, Whole const& q) { return {q, 0, -p}; }
Form cosine(QNumber const&, Whole const& p, Whole const& q) { return {0, q, -p}; }
Form tangent(QNumber const&, Whole const& p, Whole const& q) { return {q, -p, 0}; }

/// e^x = c + s = 1/(c - s).
Form exponential(QNumber const& x, Whole const& p, Whole const& q) {
  return x.sign() < 0 ? Form{p, -p, q} : Form{q, q, -p};
}

/// Of t_k = t_(k-1) w/(4^e 2k (2k + 1)), where t_(first-1) = 1, the n terms from `first` up to, but
/// without, t_end add up to t/(4^(e n) q), and the last of them is p/(4^(e n) q).
struct Terms {
  Whole t;
  Whole p;
  Whole q;
};

Terms terms_of(Whole const& w, long e, long first, long end) {
  if (end - first == 1) return {w, w, 2 * first * (2 * first + 1)};
  long const middle = (first + end) / 2;
  auto const low = terms_of(w, e, first, middle), high = terms_of(w, e, middle, end);
  return {(low.t * high.q << 2 * e * (end - middle)) + low.p * high.t, low.p * high.p,
          low.q * high.q};
}

struct SineAndCosine {
  Whole s;
  Whole c;
};

/// At u/2^e < 2^-m, over 2^b, less than 2 units off.
SineAndCosine sine_and_cosine(Whole const& u, long e, long m, bool is_circular, long b) {
  long end = 1;
  for (long left = b - m; left > 0; ++end)  // until the term before `end` is below a unit
    left -= 2 * m + Whole(2 * end * (2 * end + 1)).bits() - 1;
  Whole const w = is_circular ? -(u * u) : u * u;
  auto const [t, p, q] = terms_of(w, e, 1, end);
  Whole s = (u << (b - e)) + (u * t << b >> e * (2 * end - 1)) / q;
  Whole const square = s * s, one = Whole(1) << 2 * b;
  return {std::move(s), square_root(is_circular ? one - square : one + square)};
}

}  // namespace

Function const exp_function = {false, 0, {}, exponential};
Function const sinh_function = {false, {}, {}, sine};
Function const cosh_function = {false, 1, {}, cosine};
Function const tanh_function = {false, -1, 1, tangent};
Function const sin_function = {true, -1, 1, sine};
Function const cos_function = {true, -1, 1, cosine};
Function const tan_function = {true, {}, {}, tangent};

Series::Point const& Series::at(QNumber const& x, bool is_circular) {
  for (auto const& point : known)
    if (point.is_circular == is_circular && point.x == x) return point;
  if (x.is_zero()) return known.emplace_back(Point{x, is_circular, 0, 1, 0, 0});

  Whole const p = magnitude_of(above(x)), q = below(x);
  long const magnitude = p.bits() - q.bits() + 1;
  need(is_circular || magnitude <= most_magnitude, "too great a number");
  long const shrink = Whole(bits).bits();
  long const halvings = std::max(magnitude + shrink, 0L);
  long const b = bits + 2 * halvings + Whole(bits + halvings).bits() + 8;
  long const size = b + (is_circular ? 0 : 2L << std::max(magnitude, 0L));
  budget.spend(static_cast<double>(4 * halvings + 64), static_cast<double>(size));
  budget.spend(static_cast<double>(20 * Whole(b / shrink).bits()), static_cast<double>(b));
  budget.spend(0, static_cast<double>(b + p.bits() + q.bits()), 1);
  if (budget.only_counts()) return known.emplace_back(Point{x, is_circular, 0, 0, 0, 0});

  // |x|/2^halvings < 2^-shrink is the sum of numbers u/2^e, whose bits are four times as many from
  // one to the next. They are added, and then the sum is doubled.
  Whole const one = Whole(1) << b;
  Whole s = 0, c = one, y = (p << b) / (q << halvings), error = 2;
  for (long m = shrink, e = 0; y.sign() > 0; m = e) {
    e = std::min(4 * m, b);
    Whole const u = y >> (b - e);
    y = std::move(y) - (u << (b - e));
    if (u.sign() == 0) continue;
    auto const part = sine_and_cosine(u, e, m, is_circular, b);
    Whole const product = s * part.s, sum = c * part.c;
    s = (s * part.c + c * part.s) >> b;
    c = (is_circular ? sum - product : sum + product) >> b;
    error = std::move(error) + 4;
  }
  for (long i = 0; i < halvings; ++i) {
    Whole const most = std::max(magnitude_of(s), magnitude_of(c));
    error = (((most << 1) + error) * error >> (b - 1)) + 2;
    s = s * c >> (b - 1);
    c = (c * c >> (b - 1)) - one;
  }
  if (x.sign() < 0) s = -std::move(s);
  return known.emplace_back(Point{x, is_circular, std::move(s), std::move(c), b, std::move(error)});
}

bool Series::surely(Function const& f, QNumber const& x, int sign, QNumber const& bound) {
  auto const& limit = sign > 0 ? f.least : f.greatest;
  if (limit && (bound - *limit).sign() * sign <= 0) return true;
  bool const is_clipped = !f.is_circular && (sign > 0 ? bits < x : x < -bits);
  QNumber const nearer = is_clipped ? QNumber(sign > 0 ? bits : -bits) : x;
  auto const& [at_x, is_circular, s, c, b, error] = at(nearer, f.is_circular);
  if (budget.only_counts()) return true;
  auto const [i, j, k] = f.form(nearer, above(bound), below(bound));
  Whole const value = i * s + j * c + (k << b);
  return (magnitude_of(i) + magnitude_of(j)) * error <= (sign > 0 ? value : -value);
}

}  // namespace zelk::verify
