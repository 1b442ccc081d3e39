#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/plain_approx.h"
#include "tests/support/plain_series.h"
#include "tests/support/text_form.h"

namespace zelk {
namespace {

using test::number;
using test::show;

enum Kind { approx, expand, exp, exp_slope, sin, sin_slope, pi, compute, kinds };

struct Question {
  Kind kind;
  QNumber q;
  unsigned prec;
  int direction = 0;
};
using History = std::vector<Question>;

struct Library {
  std::string answer(Question const& question) {
    auto const& [kind, q, prec, direction] = question;
    if (kind == approx) return show(rational.approx(q, prec, direction));
    if (kind == expand) return show(rational.get_cf(q, prec));
    if (kind == exp) return show(series.maclaurin_exp_bounds(q, prec));
    if (kind == exp_slope) return show(series.maclaurin_exp_der_bounds(q, prec));
    if (kind == sin) return show(series.maclaurin_sin_bounds(q, prec));
    if (kind == sin_slope) return show(series.maclaurin_sin_der_bounds(q, prec));
    if (kind == pi) return show(series.machin_pi_bounds(prec));
    series.maclaurin_exp_compute(q, prec);
    series.maclaurin_sin_compute(q, prec);
    return {};
  }
  template <class See>
  void show_tables(See see) const {
    see(rational.approximations()), see(rational.expansions());
    see(series.exp_records()), see(series.sin_records()), see(series.pi_records());
  }

  na::RationalApproximator rational;
  na::PowerSeriesApproximator series{rational};
};

struct Plain {
  std::string answer(Question const& question) {
    auto const& [kind, q, prec, direction] = question;
    if (kind == approx) return show(rational.approx(q, prec, direction));
    if (kind == expand) return show(rational.get_cf(q, prec));
    if (kind == pi)
      return show(
          plain::answer(pis, prec, [&, p = prec] { return plain::pi_bounds(rational, p); }));
    std::pair const key(q, prec);
    auto const exp_record = [&] { return plain::exp_record(key.first, key.second); };
    auto const sin_record = [&] { return plain::sin_record(key.first, key.second); };
    if (kind == exp) return show(plain::answer(exps, key, exp_record).bounds);
    if (kind == exp_slope) return show(plain::answer(exps, key, exp_record).der_bounds);
    if (kind == sin) return show(plain::answer(sins, key, sin_record).bounds);
    if (kind == sin_slope) return show(plain::answer(sins, key, sin_record).der_bounds);
    exps[key] = exp_record();
    sins[key] = sin_record();
    return {};
  }
  template <class See>
  void show_tables(See see) const {
    see(rational.approximations), see(rational.expansions), see(exps), see(sins), see(pis);
  }

  plain::RationalApproximator rational;
  na::PowerSeriesApproximator::SeriesCache exps, sins;
  na::PowerSeriesApproximator::PiCache pis;
};

/// What a history leaves, asked from empty tables: the answers, the bucket count and every chain of
/// each cache, and the table of gcds.
struct Outcome {
  std::vector<std::string> lines;
  std::vector<long> gcds;
};

template <class World>
Outcome outcome(History const& history) {
  std::memset(gcd_cache, 0, sizeof gcd_cache);
  Outcome seen;
  World world;
  for (Question const& question : history)
    seen.lines.push_back("asked for " + show(question.q) + ": " + world.answer(question));
  seen.gcds.assign(&gcd_cache[0][0], &gcd_cache[0][0] + sizeof gcd_cache / sizeof(long));
  world.show_tables([&](auto const& table) {
    seen.lines.push_back(std::to_string(table.bucket_count()) + " buckets");
    for (std::size_t i = 0; i < table.bucket_count(); ++i)
      for (auto const* node = table.chain(i); node != nullptr; node = node->next)
        seen.lines.push_back(std::to_string(i) + ": " + show(node->value));
  });
  return seen;
}

/// Asks the library and the plain evaluation, and compares all that can be seen.
Outcome expect_agreement(History const& history) {
  auto const [lines, gcds] = outcome<Plain>(history);
  auto found = outcome<Library>(history);
  auto const [a, b] = std::ranges::mismatch(found.lines, lines);
  EXPECT_TRUE(found.lines == lines) << (a != found.lines.end() ? *a : "nothing") << "\nnot "
                                    << (b != lines.end() ? *b : "nothing");
  auto const cell = std::ranges::mismatch(found.gcds, gcds).in2 - gcds.begin();
  constexpr auto row = gcd_cache_limit + 1;
  EXPECT_TRUE(found.gcds == gcds) << "gcd_cache[" << cell / row << "][" << cell % row << ']';
  return found;
}

TEST(PlainEvaluation, AgreesAtEveryPointInBothSignsAndForms) {
  for (QNumber x : test::points()) {
    SCOPED_TRACE(show(x));
    History history;
    // The record has the form of whoever asks first: they take turns.
    for (unsigned prec : {0U, 1U, 2U, 3U, 5U, 8U, 18U, 19U, 40U})
      for (unsigned turn = 0; turn < 4; ++turn, x.negate())
        for (Kind const kind : {exp, exp_slope, sin_slope, sin})
          history.push_back({kind, (turn / 2 + prec) % 2 == 0 ? x : test::in_big_form(x), prec});
    expect_agreement(history);
    ASSERT_FALSE(HasFailure());
  }
  History history;
  for (unsigned prec = 0; prec < 30; ++prec) history.push_back({pi, {}, prec});
  expect_agreement(history);
}

TEST(PlainEvaluation, AgreesOnLongSeries) {
  History history;
  // For the last two the series of exp nearly equals the tolerance of prec 0, from below and above.
  for (QNumber const& x : test::numbers("1/3 -1/3 7/2 -22/7 355/113B -41/1024 30 -31 -200 "
                                        "1002533755409/863566676612B 876676554812/755155280127B"))
    for (unsigned prec : {0U, 57U, 58U, 290U, 1000U})
      for (Kind const kind : {exp, sin}) history.push_back({kind, x, prec});
  // A width there is 10^-20 to 29 digits, just below and just above it.
  std::string const head = "2923934568188925811366476679", places(30, '0');
  for (char const* const end : {"39/1", "40/1"})
    history.push_back({exp, number((head + end + places).c_str()), 20});
  expect_agreement(history);
}

TEST(PlainEvaluation, LeavesTheGcdsOfItsOperations) {
  for (Question const& alone :
       {Question{exp, {31, 12}, 6}, Question{exp, {22, 7}, 100}, Question{sin, 3, 2},
        Question{sin, {1, 3}, 0}, Question{sin, {-1, 2}, 3}, Question{pi, 0, 50}})
    expect_agreement({alone});
}

TEST(PlainEvaluation, AgreesWhereFormsMeet) {
  // A table that grows shows the answer for the same number in big form.
  QNumber const q = number("8589934697/3");
  History grown = {{approx, test::in_big_form(q), 1}};
  for (long n = 2; n <= 22; ++n) grown.push_back({approx, QNumber(1, n), 1});
  grown.push_back({approx, q, 1});
  EXPECT_EQ(expect_agreement(grown).lines[22], "asked for 8589934697/3: 2863311565");
  // A convergent that was big on the way keeps the end of pi big.
  History const stuck = {
      {approx, number("3804/1195"), 1}, {approx, number("3804/1195B"), 3}, {pi, QNumber(), 0}};
  EXPECT_EQ(expect_agreement(stuck).lines[2], "asked for 0: 10521/3350 3804/1195B");
  // The table of expansions grows while a number too wide for words is walked.
  History walked;
  for (long n = 1; n <= 22; ++n) walked.push_back({expand, QNumber(n), 1});
  QNumber const wide = number("27670116110564327421/36893488147419103232");
  for (unsigned prec : {1U, 2U}) walked.push_back({approx, wide, prec, 1});
  expect_agreement(walked);
}

TEST(PlainEvaluation, AgreesOnRandomHistories) {
  auto random = test::random_bytes(4);
  auto const points = test::points();
  for (int round = 0; round < 30 && !HasFailure(); ++round) {
    History history;
    std::vector<QNumber> used;
    for (int i = 0; i < 150; ++i) {
      if (i % 20 == 0) used.push_back(points[random() % points.size()]);
      if (i % 20 == 10) used.push_back(test::to_number(test::corner_rational(random)));
      QNumber q = used[random() % used.size()];
      if (random() % 2 == 0) q.negate();
      if (random() % 3 == 0) q = test::in_big_form(q);
      // Many convergents, and series where they are short.
      unsigned kind = random() % (3 * kinds);
      if (kind >= kinds || (kind >= exp && kind != pi && QNumber(9) < abs(q))) kind = approx;
      history.push_back(
          {static_cast<Kind>(kind), q, random() % 12, static_cast<int>(random() % 3) - 1});
    }
    expect_agreement(history);
  }
}

}  // namespace
}  // namespace zelk
