#include "zelk/real/interval.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "zelk/numbers/functions.h"
#include "zelk/real/lines.h"

namespace zelk::real {
namespace {

/// All intervals with ends among these.
std::vector<Interval> intervals() {
  QNumber const ends[] = {-3, -1, {-1, 2}, 0, {1, 3}, 2};
  std::vector<Interval> all;
  for (auto const& lower : ends)
    for (auto const& upper : ends)
      if (!(upper < lower)) all.emplace_back(lower, upper);
  return all;
}

/// The smallest interval that holds an operation's values on a grid over both operands: the ends
/// are on the grid, and 0 if it lies within.
template <class Operation>
Interval on_grid(Interval const& a, Interval const& b, Operation const& operation) {
  auto const samples = [](Interval const& x) {
    std::vector<QNumber> all{x.lower(), x.upper(), x.midpoint()};
    if (x.contains(0)) all.emplace_back(0);
    return all;
  };
  std::vector<QNumber> values;
  for (auto const& p : samples(a))
    for (auto const& q : samples(b)) values.push_back(operation(p, q));
  auto const [least, greatest] = std::minmax_element(values.begin(), values.end());
  return {*least, *greatest};
}

TEST(Interval, TakesTheSmallestThatHoldsEveryResult) {
  for (auto const& a : intervals()) {
    for (long const n : {-3, -2, -1, 0, 1, 2, 3, 4}) {
      if (n < 0 && a.contains(0)) {
        EXPECT_THROW((void)pow(a, n), std::domain_error);
        continue;
      }
      EXPECT_EQ(pow(a, n), on_grid(a, 0, [&](auto const& p, auto&) { return zelk::pow(p, n); }));
    }
    for (auto const& b : intervals()) {
      EXPECT_EQ(a + b, on_grid(a, b, [](auto& p, auto& q) { return p + q; }));
      EXPECT_EQ(a - b, on_grid(a, b, [](auto& p, auto& q) { return p - q; }));
      EXPECT_EQ(a * b, on_grid(a, b, [](auto& p, auto& q) { return p * q; }));
      if (b.contains(0))
        EXPECT_THROW((void)(a / b), std::domain_error);
      else
        EXPECT_EQ(a / b, on_grid(a, b, [](auto& p, auto& q) { return p / q; }));
      EXPECT_TRUE(hull(a, b).contains(a) && hull(b, a).contains(b));
      auto const common = intersection(a, b);
      EXPECT_EQ(common.has_value(), a.lower() <= b.upper() && b.lower() <= a.upper());
      EXPECT_TRUE(!common || (a.contains(*common) && b.contains(*common)));
    }
  }
  EXPECT_THROW((void)Interval(1, 0), std::domain_error);
}

// Compared with enclosures that are narrower than the lines are off.
TEST(Lines, StayOnTheirSideAndNear) {
  ElementaryFunctions f;
  auto const samples = [](Interval const& piece) {
    std::vector<QNumber> all;
    for (long i = 0; i <= 16; ++i) all.push_back(piece.lower() + piece.width() * QNumber(i, 16));
    return all;
  };
  auto const tangent = tangent_below_exp(f, {-1, 3}, 10);
  auto const chord = chord_above_exp(f, {-2, 3}, 10);
  for (auto const& x : samples({-2, 3})) {
    EXPECT_LT(tangent(x), f.exp(x, 30).upper());
    EXPECT_LT(f.exp(x, 30).lower(), chord(x));
  }
  QNumber const unit(1, 10'000'000'000);
  EXPECT_LT(f.exp({-1, 3}, 30).lower() - tangent({-1, 3}), unit);
  EXPECT_LT(chord(-2) - f.exp(-2, 30).lower(), unit);
  EXPECT_EQ(tangent_below_exp(f, -99, 2), Line{});

  for (Interval const& piece : {Interval(0, 3), Interval(-3, 0), Interval({7, 2}, 6), Interval(2)})
    for (auto const& touch : {piece.lower(), QNumber(2, 3) * piece.lower() + piece.upper() / 3})
      for (unsigned const digits : {0U, 1U, 2U, 10U}) {
        auto const [below, above] = lines_around_sin(f, piece, touch, digits);
        for (auto const& x : samples(piece)) {
          EXPECT_LE(below(x), f.sin(x, 30).upper());
          EXPECT_LE(f.sin(x, 30).lower(), above(x));
        }
        auto const& line = f.sin(piece.midpoint(), 5).sign() > 0 ? above : below;
        EXPECT_LT(abs(line(touch) - f.sin(touch, 30).lower()),
                  (1 + 2 * piece.width()) * zelk::pow(10, -static_cast<long>(digits)));
      }
  EXPECT_THROW((void)lines_around_sin(f, {3, 4}, 3, 10), std::domain_error);
  EXPECT_THROW((void)lines_around_sin(f, {1, 2}, 3, 10), std::domain_error);
}

}  // namespace
}  // namespace zelk::real
