#include <gmpxx.h>
#include <mpfi.h>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "tests/fuzz/body.h"
#include "tests/support/text_form.h"
#include "zelk/approx/power_series_approximator.h"
#include "zelk/approx/rational_approximator.h"
#include "zelk/approx/short_bounds.h"

namespace zelk::test {
namespace {

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

/// The ends surround the truth. Returns how far they are from each other.
mpq_class width_around(mpfi_srcptr truth, std::pair<QNumber, QNumber> const& ends) {
  mpq_class const low = to_rational(ends.first), high = to_rational(ends.second);
  CHECK(mpfr_cmp_q(&truth->left, low.get_mpq_t()) >= 0);
  CHECK(mpfr_cmp_q(&truth->right, high.get_mpq_t()) <= 0);
  return high - low;
}

struct Approximators {
  na::RationalApproximator rational;
  na::PowerSeriesApproximator series{rational};
  mpfi_t point, truth;  // hundreds of digits narrower than what is compared with them

  Approximators() {
    mpfi_init2(point, 2048);
    mpfi_init2(truth, 2048);
  }
  Approximators(Approximators const&) = delete;
  Approximators& operator=(Approximators const&) = delete;
  ~Approximators() {
    mpfi_clear(point);
    mpfi_clear(truth);
  }

  /// Requires: prec > 0.
  void check_rational(QNumber const& q, unsigned prec, int direction) {
    mpq_class const x = to_rational(q);
    auto const terms = terms_of(x, q.is_big());
    auto const found = rational.get_cf(q, prec);
    auto const length = found.terms.size();
    CHECK(length >= std::min<std::size_t>(prec, terms.size()) && length <= terms.size());
    for (std::size_t i = 0; i < length; ++i) CHECK(to_rational(found.terms[i]) == terms[i]);
    CHECK(to_rational(found.remainder) ==
          (length == terms.size() ? 0 : value_of(terms, length, terms.size())));

    auto const answer = to_rational(rational.approx(q, prec, direction));
    mpq_class expected = terms.empty() ? x : value_of(terms, 0, prec);
    while (direction * cmp(expected, x) < 0) expected = value_of(terms, 0, ++prec);
    CHECK(answer == expected);
  }

  void check_series(QNumber const& x, unsigned prec) {
    mpq_class unit = 1;  // 10^-prec
    mpz_ui_pow_ui(unit.get_den_mpz_t(), 10, prec);
    mpfi_set_q(point, to_rational(x).get_mpq_t());
    mpfi_exp(truth, point);
    CHECK(width_around(truth, series.maclaurin_exp_bounds(x, prec)) < unit);
    CHECK(width_around(truth, na::short_exp_bounds(series, x, prec)) < unit);
    auto [low, high] = series.maclaurin_exp_der_bounds(x, prec);
    x.sign() < 0 ? width_around(truth, {high, low}) : width_around(truth, {low, high});
    mpfi_sin(truth, point);
    CHECK(width_around(truth, series.maclaurin_sin_bounds(x, prec)) < 2 * unit);
    CHECK(width_around(truth, na::short_sin_bounds(series, x, prec)) < 2 * unit);
    mpfi_cos(truth, point);
    width_around(truth, series.maclaurin_sin_der_bounds(x, prec));
    CHECK(width_around(truth, na::short_cos_bounds(series, x, prec)) < 2 * unit);
    mpfi_const_pi(truth);
    if (prec < 40) CHECK(width_around(truth, series.machin_pi_bounds(prec)) <= unit);
  }
};

}  // namespace

void run_points() {
  for (bool const big : {false, true}) {
    Approximators approximators;
    for (QNumber point : points()) {
      if (big) point = in_big_form(point);
      for (int turn = 0; turn < 2; ++turn, point.negate()) {
        for (unsigned const prec : {1U, 2U, 7U, 40U})
          for (int const direction : {-1, 0, 1})
            approximators.check_rational(point, prec, direction);
        for (unsigned const prec : {0U, 1U, 19U, 20U, 21U}) approximators.check_series(point, prec);
      }
    }
  }
}

void run_queries(Bytes bytes) {
  ByteReader next{bytes};
  Approximators approximators;
  // One form for all: equal numbers in two forms may find each other until a table grows.
  bool const big = next() % 2 != 0;
  std::vector<mpq_class> used = {0};
  while (!next.done()) {
    unsigned const choice = next();
    if (choice % 2 == 0) used.push_back(corner_rational(next));
    mpq_class x = used[next() % used.size()];
    if (choice / 2 % 4 == 0) {
      while (abs(x) > 100) x /= 16;
      approximators.check_series(to_number(x, big), next() % 241);
    } else {
      int const direction = static_cast<int>(choice / 2 % 4) - 2;
      approximators.check_rational(to_number(x, big), 1 + next() % 40, direction);
    }
  }
}

}  // namespace zelk::test
