#include "cli/solver.h"

#include <utility>

#include "zelk/certify/write.h"

namespace zelk::cli {

Answered Solver::answer_within(double room, Query const& query, double bits,
                               bool with_certificate) {
  auto const& function = *query.function;
  if (with_certificate && function.prove == nullptr)
    throw Refusal(Refusal::Kind::unanswerable, 1, "there are no certificates of " + function.name,
                  function.name + ": there are no certificates of it");
  if (held + bits > room) let_go();
  if (!approximators) approximators = std::make_unique<Approximators>(limits.max_bits);
  held += bits;
  if (!with_certificate) return {function.solve(query, *approximators), {}};
  auto const proven = function.prove(query, *approximators);
  auto lines = certify::to_json_lines(proven.certificate);
  lines.pop_back();
  return {proven.answer, std::move(lines)};
}

void Solver::let_go() {
  approximators.reset();
  held = 0;
}

}  // namespace zelk::cli
