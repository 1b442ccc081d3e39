#pragma once

#include <memory>
#include <string_view>
#include <variant>
#include <vector>

#include "cli/limits.h"
#include "cli/query.h"
#include "zelk/approx/power_series_approximator.h"
#include "zelk/approx/rational_approximator.h"

namespace zelk::cli {

using Terms = std::vector<QNumber>;
using Bounds = na::PowerSeriesApproximator::Bounds;

/// A convergent of a number beside it.
struct Convergent {
  QNumber value;
  std::string_view side;  // how the value compares to the number: <, = or >
  QNumber distance;
};

using Answer = std::variant<Terms, QNumber, std::vector<Convergent>, Bounds>;

/// Asks the library, through one pair of approximators at a time.
class Solver {
 public:
  explicit Solver(Limits const& solver_limits) : limits(solver_limits) {}

  /// The answer, to be printed with `places` decimals. Throws: Refusal, beyond the limits.
  Answer answer(Query const& query, unsigned places);

 private:
  // The tables of the library put all points of one denominator in one chain, so whoever keeps the
  // finished answers elsewhere does well to begin again before such a chain is long; and before
  // the tables together hold what a single query may.
  static constexpr unsigned answers_of_a_pair = 1000;

  struct Approximators {
    na::RationalApproximator rational;
    na::PowerSeriesApproximator series{rational};
  };

  Terms terms(Query const& query);
  std::vector<Convergent> convergents(Query const& query);
  Bounds cosine(QNumber const& x, unsigned digits);

  Limits const& limits;
  std::unique_ptr<Approximators> approximators;
  unsigned answers = 0;  // of this pair
  double held = 0;       // by it, in bits
};

}  // namespace zelk::cli
