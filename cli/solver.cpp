#include "cli/solver.h"

namespace zelk::cli {

Answer Solver::answer_within(double room, Query const& query, double bits) {
  if (held + bits > room) let_go();
  if (!approximators) approximators = std::make_unique<Approximators>(limits.max_bits);
  held += bits;
  return query.function->solve(query, *approximators);
}

void Solver::let_go() {
  approximators.reset();
  held = 0;
}

}  // namespace zelk::cli
