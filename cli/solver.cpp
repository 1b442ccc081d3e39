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

Answer Solver::answer(Query const& query) {
  if (answers == answers_of_a_pair) {
    approximators = std::make_unique<Approximators>();
    answers = 0;
  }
  ++answers;
  auto& [rational, series] = *approximators;
  auto const& [function, x, count, direction, derivative] = query;
  switch (function) {
    case Function::cf: {
      auto terms = rational.get_cf(x, count).terms;
      if (terms.size() > count) terms.erase(terms.begin() + count, terms.end());
      return terms;
    }
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

std::vector<Convergent> Solver::convergents(Query const& query) {
  QNumber const& q = query.number;
  auto& rational = approximators->rational;
  std::vector<Convergent> all;
  for (unsigned terms = 1; terms <= query.count; ++terms) {
    QNumber const c = rational.do_approx(q, terms);
    all.push_back({c, c < q ? "<" : c == q ? "=" : ">", abs(c - q)});
    if (c == q) break;  // only the last one is
  }
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
