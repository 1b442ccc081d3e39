#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/plain_approx.h"
#include "tests/support/plain_series.h"
#include "tests/support/text_form.h"

namespace zelk {
namespace {

using test::in_big_form;
using test::show;

/// The bucket count, and every chain from its head.
template <class Table>
std::vector<std::string> layout(Table const& table) {
  std::vector<std::string> lines = {std::to_string(table.bucket_count())};
  for (std::size_t i = 0; i < table.bucket_count(); ++i)
    for (auto const* node = table.chain(i); node; node = node->next)
      lines.push_back(std::to_string(i) + ": " + show(node->value));
  return lines;
}

template <class Table>
void expect_equal(Table const& table, Table const& plain) {
  auto const found = layout(table), expected = layout(plain);
  auto const [a, b] = std::ranges::mismatch(found, expected);
  EXPECT_TRUE(found == expected) << (a != found.end() ? *a : "nothing") << ", not "
                                 << (b != expected.end() ? *b : "nothing");
}

/// The library and the plain evaluation, asked the same questions: every answer must agree in value
/// and form, and so must all tables with their buckets and chains.
struct SideBySide {
  void approx(QNumber const& q, unsigned prec, int dir) {
    QNumber const r = rational.approx(q, prec, dir);
    EXPECT_EQ(show(r), show(plain.approx(q, prec, dir)));
    EXPECT_FALSE(dir > 0 ? r < q : dir < 0 && q < r);
  }
  void get_cf(QNumber const& q, unsigned prec) {
    EXPECT_EQ(show(rational.get_cf(q, prec)), show(plain.get_cf(q, prec)));
  }
  void ask(QNumber const& x, unsigned prec) {
    std::pair const key(x, prec);
    auto const exp = plain::answer(exps, key, [&] { return plain::exp_record(x, prec); });
    EXPECT_EQ(show(series.maclaurin_exp_bounds(x, prec)), show(exp.bounds));
    EXPECT_EQ(show(series.maclaurin_exp_der_bounds(x, prec)), show(exp.der_bounds));
    auto const sin = plain::answer(sins, key, [&] { return plain::sin_record(x, prec); });
    EXPECT_EQ(show(series.maclaurin_sin_der_bounds(x, prec)), show(sin.der_bounds));
    EXPECT_EQ(show(series.maclaurin_sin_bounds(x, prec)), show(sin.bounds));
  }
  void compute(QNumber const& x, unsigned prec) {
    series.maclaurin_exp_compute(x, prec);
    exps[{x, prec}] = plain::exp_record(x, prec);
    series.maclaurin_sin_compute(x, prec);
    sins[{x, prec}] = plain::sin_record(x, prec);
  }
  void pi(unsigned prec) {
    EXPECT_EQ(show(series.machin_pi_bounds(prec)),
              show(plain::answer(pis, prec, [&] { return plain::pi_bounds(plain, prec); })));
  }
  void tables() {
    expect_equal(rational.approximations(), plain.approximations);
    expect_equal(rational.expansions(), plain.expansions);
    expect_equal(series.exp_records(), exps);
    expect_equal(series.sin_records(), sins);
    expect_equal(series.pi_records(), pis);
  }

  na::RationalApproximator rational;
  na::PowerSeriesApproximator series{rational};
  plain::RationalApproximator plain;
  na::PowerSeriesApproximator::SeriesCache exps, sins;
  na::PowerSeriesApproximator::PiCache pis;
};

TEST(PlainEvaluation, AgreesAtEveryPointInBothSignsAndForms) {
  SideBySide both;
  for (QNumber x : test::points()) {
    SCOPED_TRACE(show(x));
    // The record has the form of whoever asks first: they take turns.
    for (unsigned prec : {0U, 1U, 2U, 3U, 5U, 8U, 18U, 19U, 40U})
      for (unsigned turn = 0; turn < 4; ++turn, x.negate())
        both.ask((turn / 2 + prec) % 2 == 0 ? x : in_big_form(x), prec);
    ASSERT_FALSE(HasFailure());
  }
  for (unsigned prec = 0; prec < 30; ++prec) both.pi(prec);
  both.tables();
}

TEST(PlainEvaluation, AgreesOnRandomQuestions) {
  auto random = test::random_bytes(4);
  auto const points = test::points();
  for (int round = 0; round < 25 && !HasFailure(); ++round) {
    SideBySide both;
    std::vector<QNumber> asked;
    for (int i = 0; i < 150; ++i) {
      if (i % 20 == 0) asked.push_back(points[random() % points.size()]);
      if (i % 20 == 10) asked.push_back(test::to_number(test::corner_rational(random)));
      QNumber q = asked[random() % asked.size()];
      if (random() % 2 == 0) q.negate();
      if (random() % 3 == 0) q = in_big_form(q);
      SCOPED_TRACE(show(q));
      auto const prec = random() % 12;
      auto const question = abs(q) < QNumber(9) ? random() % 16 : 2 + random() % 14;
      if (question == 0) both.ask(q, prec);
      if (question == 1) both.compute(q, prec);
      if (question == 2) both.get_cf(q, prec);
      if (question == 3) both.pi(prec);
      if (question > 3) both.approx(q, prec + 1, static_cast<int>(random() % 3) - 1);
    }
    both.tables();
  }
}

}  // namespace
}  // namespace zelk
