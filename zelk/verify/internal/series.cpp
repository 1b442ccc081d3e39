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

/// Over 2^b: Taylor's series at y < 2^(b-1), of sine and cosine, or the hyperbolic ones.
struct Sums {
  Whole s;
  Whole c;
  long terms;
};

Sums sums_at(Whole const& y, long b, bool is_circular) {
  Whole const one = Whole(1) << b;
  Whole sums[] = {one, 0}, term = one;
  long k = 0;
  while (term.sign() > 0) {
    ++k;
    term = (term * y >> b) / k;
    Whole& sum = sums[k % 2];
    sum = is_circular && k % 4 > 1 ? std::move(sum) - term : std::move(sum) + term;
  }
  return {std::move(sums[1]), std::move(sums[0]), k};
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
  long const shrink = std::lround(std::floor(std::sqrt(static_cast<double>(bits)))) / 2 + 1;
  long const halvings = std::max(magnitude + shrink, 0L);
  long const b = bits + 2 * halvings + Whole(bits + halvings).bits() + 8;
  long const size = b + (is_circular ? 0 : 2L << std::max(magnitude, 0L));
  long const products = 4 * (halvings + b / shrink) + 64;
  budget.spend(static_cast<double>(products), static_cast<double>(size));
  budget.spend(0, static_cast<double>(b + p.bits() + q.bits()), 1);
  if (budget.only_counts()) return known.emplace_back(Point{x, is_circular, 0, 0, 0, 0});

  // y = |x|/2^halvings is doubled again.
  auto [s, c, terms] = sums_at((p << b) / (q << halvings), b, is_circular);
  Whole const one = Whole(1) << b;
  Whole error = 2 * terms + 4;
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
