#include "cli/solver.h"

#include <utility>

#include "zelk/certify/write.h"

namespace zelk::cli {

namespace {

[[noreturn]] void refuse(Function const& function, std::string const& what) {
  throw Refusal(Refusal::Kind::unanswerable, 1, "there are no " + what + " of " + function.name,
                function.name + ": there are no " + what + " of it");
}

}  // namespace

Answered Solver::answer_within(double room, Query const& query, double bits, ProofKind kind) {
  auto const& function = *query.function;
  bool const is_certified = kind == ProofKind::certificate || kind == ProofKind::statement;
  if (is_certified && function.prove == nullptr) refuse(function, "certificates");
  if (kind == ProofKind::goal && function.goal == nullptr) refuse(function, "goals");
  if (kind == ProofKind::statement) return {{}, function.state(query)};
  if (held + bits > room) let_go();
  if (!approximators) approximators = std::make_unique<Approximators>(limits.max_bits);
  held += bits;
  Answered answered;
  if (kind == ProofKind::certificate) {
    auto proven = function.prove(query, *approximators);
    answered = {std::move(proven.answer), certify::to_json_lines(proven.certificate)};
  } else {
    answered.answer = function.solve(query, *approximators);
    if (kind == ProofKind::goal) answered.proof = function.goal(query, answered.answer);
  }
  if (!answered.proof.empty()) answered.proof.pop_back();
  return answered;
}

void Solver::let_go() {
  approximators.reset();
  held = 0;
}

}  // namespace zelk::cli
