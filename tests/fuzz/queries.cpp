#include <gmpxx.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "tests/fuzz/body.h"
#include "tests/support/random_number.h"
#include "tests/support/real.h"
#include "tests/support/text_form.h"
#include "zelk/approx/power_series_approximator.h"
#include "zelk/approx/rational_approximator.h"

namespace zelk::test {
namespace {

enum Kind { expansion, convergent, exp, exp_slope, sin, sin_slope, pi, kinds };

struct Query {
  unsigned kind;
  QNumber x;
  unsigned prec;
  int direction;
};

/// Two ends, or a convergent, or a remainder and the terms before it.
using Answer = std::vector<mpq_class>;

struct Approximators {
  na::RationalApproximator rational;
  na::PowerSeriesApproximator series{rational};

  Answer ask(Query const& query) {
    auto const& [kind, x, prec, direction] = query;
    if (kind == convergent) return {to_rational(rational.approx(x, prec, direction))};
    if (kind == expansion) {
      auto const c = rational.get_cf(x, prec);
      Answer answer = {to_rational(c.remainder)};
      for (QNumber const& term : c.terms) answer.push_back(to_rational(term));
      return answer;
    }
    auto const ends = kind == exp         ? series.maclaurin_exp_bounds(x, prec)
                      : kind == exp_slope ? series.maclaurin_exp_der_bounds(x, prec)
                      : kind == sin       ? series.maclaurin_sin_bounds(x, prec)
                      : kind == sin_slope ? series.maclaurin_sin_der_bounds(x, prec)
                                          : series.machin_pi_bounds(prec);
    return {to_rational(ends.first), to_rational(ends.second)};
  }

  std::array<std::size_t, 5> cache_sizes() const {
    return {rational.approximations().size(), rational.expansions().size(),
            series.exp_records().size(), series.sin_records().size(), series.pi_records().size()};
  }
};

/// All terms of x, rounded as numbers are split: down in big form, toward zero in small form.
std::vector<mpz_class> terms_of(mpq_class x, bool big) {
  auto const divide = big ? mpz_fdiv_q : mpz_tdiv_q;
  std::vector<mpz_class> terms;
  while (x != 0) {
    divide(terms.emplace_back().get_mpz_t(), x.get_num_mpz_t(), x.get_den_mpz_t());
    x -= terms.back();
    if (x != 0) x = 1 / x;
  }
  return terms;
}

/// [terms[first]; ..., terms[last - 1]], by the recurrence h(k) = a(k) h(k-1) + h(k-2).
mpq_class value_of(std::vector<mpz_class> const& terms, std::size_t first, std::size_t last) {
  mpz_class n = 1, n_before = 0, d = 0, d_before = 1;
  for (std::size_t i = first; i < std::min(last, terms.size()); ++i) {
    n_before = std::exchange(n, mpz_class(terms[i] * n + n_before));
    d_before = std::exchange(d, mpz_class(terms[i] * d + d_before));
  }
  mpq_class value(n, d);
  value.canonicalize();
  return value;
}

void check_rational(Query const& query, Answer const& answer) {
  mpq_class const x = to_rational(query.x);
  auto const terms = terms_of(x, query.x.is_big());
  if (query.kind == expansion) {
    std::size_t const found = answer.size() - 1;
    CHECK(found >= std::min<std::size_t>(query.prec, terms.size()) && found <= terms.size());
    CHECK(std::equal(answer.begin() + 1, answer.end(), terms.begin()));
    CHECK(answer[0] == (found == terms.size() ? 0 : value_of(terms, found, terms.size())));
    return;
  }
  std::size_t prec = query.prec;
  mpq_class expected = x;
  if (!query.x.is_integer()) do {
      expected = value_of(terms, 0, prec++);
    } while (query.direction * cmp(expected, x) < 0);
  CHECK(answer[0] == expected);
}

void check_bounds(Query const& query, Answer const& ends) {
  mpz_class power;
  mpz_ui_pow_ui(power.get_mpz_t(), 10, query.prec);
  mpq_class const width = (ends[1] - ends[0]) * power;
  mpq_class const x = to_rational(query.x);
  Real truth;
  if (query.kind == pi) {
    CHECK(width <= 1);
    truth.set_pi();
  } else if (query.kind < sin) {
    CHECK(query.kind == exp_slope || width < 1);
    truth.set_exp(x);
  } else {
    CHECK(query.kind == sin_slope || width < 2);
    truth.set_wave(x, query.kind == sin ? mpfr_sin : mpfr_cos);
  }
  bool const falling = query.kind == exp_slope && x < 0;
  CHECK(truth.is_between(ends[falling], ends[!falling]));
}

}  // namespace

void run_queries(Bytes bytes) {
  ByteReader next{bytes};
  Approximators approximators;
  // One form for all: equal numbers in two forms may find each other until a table grows.
  bool const big = next() % 2 != 0;
  std::vector<mpq_class> used;
  for (QNumber const& x : points()) used.push_back(to_rational(x));
  std::vector<std::pair<Query, Answer>> asked;
  while (!next.done() && asked.size() < 24) {
    unsigned const choice = next();
    if (choice % 2 == 0) used.push_back(corner_rational(next));
    mpq_class x = used[next() % used.size()];
    if (choice / 6 % 2 != 0) x = -x;
    unsigned const kind = next() % kinds;
    unsigned const prec = kind < exp ? 1 + next() % 40 : next() % (kind == pi ? 20 : 61);
    while (kind >= exp && abs(x) > 100) x /= 16;
    Query const query{kind, to_number(x, big), prec, static_cast<int>(choice / 2 % 3) - 1};

    auto const before = approximators.cache_sizes();
    auto const& answer = asked.emplace_back(query, approximators.ask(query)).second;
    auto const after = approximators.cache_sizes();
    CHECK(std::equal(before.begin(), before.end(), after.begin(), std::less_equal()));
    kind < exp ? check_rational(query, answer) : check_bounds(query, answer);
  }
  // Now all of it is known.
  auto const sizes = approximators.cache_sizes();
  for (auto const& [query, answer] : asked) CHECK(approximators.ask(query) == answer);
  CHECK(approximators.cache_sizes() == sizes);
}

}  // namespace zelk::test
