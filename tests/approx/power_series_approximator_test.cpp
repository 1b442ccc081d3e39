#include "zelk/approx/power_series_approximator.h"

#include <gtest/gtest.h>

#include <climits>
#include <initializer_list>
#include <set>
#include <sstream>
#include <string>

#include "tests/support/text_form.h"
#include "zelk/approx/internal/power_terms.h"
#include "zelk/approx/progress.h"

namespace zelk::na {
namespace {

using test::number;
using test::show;
using Series = PowerSeriesApproximator;
using Bounds = Series::Bounds;

struct Fresh {
  RationalApproximator rational;
  Series series{rational};
};

/// Rows are point, precision, both bounds, both derivative bounds and degree: the entry that either
/// of the two queries leaves behind, and the other finds.
void expect_records(std::initializer_list<char const*> rows,
                    Bounds (Series::*value)(QNumber const&, unsigned),
                    Bounds (Series::*derivative)(QNumber const&, unsigned),
                    hsh::TableView<Series::SeriesCache> (Series::*records)() const) {
  for (char const* const row : rows) {
    std::istringstream words(row);
    std::string x, prec, l, u, dl, du;
    words >> x >> prec >> l >> u >> dl >> du;
    for (bool const value_first : {true, false}) {
      Fresh fresh;
      for (bool const ask_value : {value_first, !value_first}) {
        auto const ask = ask_value ? value : derivative;
        EXPECT_EQ(show((fresh.series.*ask)(number(x), static_cast<unsigned>(std::stoul(prec)))),
                  ask_value ? l + ' ' + u : dl + ' ' + du);
        EXPECT_EQ(test::entries((fresh.series.*records)()), std::set<std::string>{row});
      }
      EXPECT_EQ(fresh.series.exp_records().size() + fresh.series.sin_records().size(), 1);
    }
  }
}

TEST(PowerSeriesApproximator, StoresOneRecordForBothPairs) {
  // exp at 1/1000, and at -1 for prec 0, would meet the tolerance at degree 2, sin at 3 at degree
  // 7: there the sign of a second derivative says when to stop.
  expect_records(
      {"0 7 1 1 1 1 0", "0B 7 1 1 1 1 0", "1 0 5/2 3 2 4 3", "1B 0 5/2B 3B 2B 4B 3",
       "1 1 65/24 325/119 8/3 64/23 5", "1/3 2 25/18 225/161 4/3 24/17 3",
       "1/1000 5 2002001/2000000 6006003000/5999999999 1001/1000 2002000/1999999 3",
       "-1/2 0 29/48 5/8 5/8 1/2 3", "-1 0 11/30 3/8 3/8 1/3 5", "-1 1 11/30 3/8 3/8 1/3 5",
       "-1 2 11/30 3/8 3/8 1/3 5", "-1B 2 11/30B 3/8B 3/8B 1/3B 5"},
      &Series::maclaurin_exp_bounds, &Series::maclaurin_exp_der_bounds, &Series::exp_records);
  expect_records(
      {"0 7 0 0 1 1 0", "0B 7 0 0 1 1 0", "1 0 19/24 7/8 1/3 2/3 3", "1B 0 19/24B 7/8B 1/3B 2/3B 3",
       "1 2 121/144 607/720 8/15 11/20 5", "-1/2 3 -22093/46080 -22091/46080 1123/1280 3371/3840 5",
       "2 0 284/315 32/35 -47/105 -25/63 7",
       "19/10 0 51319/240000 103987/80000 -11689/6000 2029/6000 3",
       "-19/10 0 -103987/80000 -51319/240000 -11689/6000 2029/6000 3",
       "3 0 55101/394240 279879/1971200 -30661/30800 -243101/246400 11"},
      &Series::maclaurin_sin_bounds, &Series::maclaurin_sin_der_bounds, &Series::sin_records);
}

TEST(PowerSeriesApproximator, FindsWorkedBoundsOfPiAndDegrees) {
  Fresh fresh;
  auto& series = fresh.series;
  EXPECT_EQ(show(series.machin_pi_bounds(0)), "10521/3350 3804/1195");
  EXPECT_EQ(show(series.machin_pi_bounds(1)), "10521/3350 3804/1195");
  EXPECT_EQ(show(series.machin_pi_bounds(2)), "5359397032/1706489875 100084823351/31857700982");
  series.maclaurin_exp_compute(QNumber(-10), 0);
  EXPECT_TRUE(test::entries(series.exp_records()).begin()->ends_with(" 35"));
  series.maclaurin_sin_compute(QNumber(1, 1000), 10);
  EXPECT_TRUE(test::entries(series.sin_records()).begin()->ends_with(" 3"));
}

TEST(PowerTerms, AreNotForeseenBeyondTheGreatestIndex) {
  PowerTerms const terms(INT_MAX - 40, 1, 0);
  EXPECT_EQ(terms.certain_terms(QNumber(1L << 40), Integer(1UL)), 40);
}

TEST(PowerSeriesApproximator, CountsItsStepsForWhomeverCounts) {
  Fresh fresh;
  StepCounter const whole;
  unsigned long before = 0;
  for (auto const ask : {&Series::maclaurin_exp_bounds, &Series::maclaurin_sin_bounds}) {
    (fresh.series.*ask)(QNumber(1, 3), 100);
    EXPECT_GE(whole.steps(), before + 40);
    before = whole.steps();
    (fresh.series.*ask)(QNumber(1, 3), 100);
    EXPECT_EQ(whole.steps(), before) << "known, and yet computed again";
  }
  {
    StepCounter const inner;
    fresh.series.machin_pi_bounds(50);
    EXPECT_GT(inner.steps(), 100);
    before += inner.steps();
  }
  EXPECT_EQ(whole.steps(), before);
}

}  // namespace
}  // namespace zelk::na
