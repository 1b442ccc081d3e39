#pragma once

#include <memory>
#include <string>

#include "cli/functions.h"
#include "cli/limits.h"

namespace zelk::cli {

enum class ProofKind { none, certificate, statement, goal };

/// An answer, with its proof if one was asked for: lines, the last without its end. What a
/// certificate would state stands alone.
struct Answered {
  Answer answer;
  std::string proof;
};

/// Asks the library, through one pair of approximators at a time.
class Solver {
 public:
  explicit Solver(Limits const& solver_limits) : limits(solver_limits) {}

  /// Throws: Refusal, beyond the limits.
  Answer answer(Query const& query) {
    return answer_within(limits.max_bits, query, limits.check(query).held);
  }

  /// The same of a query that was found to take so many bits. What the tables of the library hold
  /// is let go before it would be more than `room`, so far as a single query leaves that choice.
  Answer answer_within(double room, Query const& query, double bits) {
    return answer_within(room, query, bits, ProofKind::none).answer;
  }
  Answered answer_within(double room, Query const& query, double bits, ProofKind kind);

  /// Lets go of what the tables hold.
  void let_go();

 private:
  Limits const& limits;
  std::unique_ptr<Approximators> approximators;
  double held = 0;  // by them, in bits
};

}  // namespace zelk::cli
