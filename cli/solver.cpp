#include "cli/solver.h"

#include <utility>

#include "zelk/numbers/integer.h"

namespace zelk::cli {
namespace {

/// 2 * 10^-digits.
QNumber width_of(unsigned digits) {
  Integer power;
  mpz_ui_pow_ui(power, 10, digits);
  return QNumber::from_mpz(IntegerView(2L), power);
}

}  // namespace

Answer Solver::answer(Query const& query, unsigned places) {
  double const more = limits.check(query, places).held;
  if (!approximators || answers == answers_of_a_pair || held + more > limits.max_bits) {
    approximators.reset();
    approximators = std::make_unique<Approximators>();
    answers = 0;
    held = 0;
  }
  ++answers;
  held += more;
  auto& [rational, series] = *approximators;
  auto const& [function, x, count, direction, derivative] = query;
  switch (function) {
    case Function::cf:
      return terms(query);
    case Function::approx:
      return rational.approx(x, count, direction);
    case Function::convergents:
      return convergents(query);
    case Function::exp:
      return derivative ? series.maclaurin_exp_der_bounds(x, count)
                        : series.maclaurin_exp_bounds(x, count);
    case Function::sin:
      return derivative ? series.maclaurin_sin_der_bounds(x, count)
                        : series.maclaurin_sin_bounds(x, count);
    case Function::cos: {
      if (!derivative) return cosine(x, count);
      auto const [lower, upper] = series.maclaurin_sin_bounds(x, count);
      return Bounds(QNumber(0) - upper, QNumber(0) - lower);
    }
    default:
      return series.machin_pi_bounds(count);
  }
}

Terms Solver::terms(Query const& query) {
  auto all = approximators->rational.get_cf(query.number, query.count).terms;
  if (all.size() > query.count) all.erase(all.begin() + query.count, all.end());
  return all;
}

std::vector<Convergent> Solver::convergents(Query const& query) {
  QNumber const& q = query.number;
  // By the recurrence, from the terms: asked one by one each would be found from the first on.
  QNumber h(1), h_before(0), k(0), k_before(1);
  std::vector<Convergent> all;
  for (QNumber const& term : terms(query)) {
    h_before = std::exchange(h, term * h + h_before);
    k_before = std::exchange(k, term * k + k_before);
    QNumber const c = h / k;
    all.push_back({c, c < q ? "<" : c == q ? "=" : ">", abs(c - q)});
  }
  if (all.empty()) all.push_back({q, "=", QNumber(0)});  // zero, which has no terms
  return all;
}

/// The sine's companion, at as many digits as make it as narrow as the sine would be.
Bounds Solver::cosine(QNumber const& x, unsigned digits) {
  QNumber const width = width_of(digits);
  for (unsigned asked = digits;; asked += 1 + asked / 8) {
    auto bounds = approximators->series.maclaurin_sin_der_bounds(x, asked);
    if (bounds.second - bounds.first < width) return bounds;
  }
}

}  // namespace zelk::cli
