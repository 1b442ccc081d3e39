#include "cli/answers.h"

#include <new>
#include <stdexcept>

namespace zelk::cli {

void Answers::answer(Item& item) {
  item.reason = item.flaw != nullptr ? item.flaw : "";
  item.offending_column = 1;
  item.is_repeated = false;
  if (item.flaw != nullptr) return;
  mine = this;
  try {
    look_up_or_compute(item);
  } catch (std::bad_alloc const&) {
    let_go_of_all();
    try {
      look_up_or_compute(item);
    } catch (std::bad_alloc const&) {
      item.refuse("not enough memory");
    }
  }
  mine = nullptr;
}

void Answers::look_up_or_compute(Item& item) {
  if (auto const known = finished.find(item.query); known != finished.end()) {
    item.answer = known->second.answer;
    item.note = known->second.note;
    item.is_repeated = true;
    return;
  }
  try {
    compute(item);
  } catch (Refusal const& refusal) {
    item.answer = refusal.reason;
    item.reason = item.answer;
    item.offending_column = refusal.column;
    return;
  }
  keep(item);
}

void Answers::compute(Item& item) {
  auto const& style = settings.style;
  settings.limits.within([&] {
    Query query = parse_query(item.query);
    query.places = places_of(query, style);
    double const bits = settings.limits.check(query).held;
    if (kept + bits > share) let_go();
    auto const answered = solver.answer_within(share - kept, query, bits, proof_of(style));
    item.answer = to_output(item.query, query, answered, style, " ", "; ");
    item.note = note_on(query, answered.answer);
  });
}

void Answers::keep(Item const& item) {
  // With the node, its place among the buckets, and what the allocations themselves take.
  double const more = 8.0 * static_cast<double>(item.query.size() + item.answer.size() + 160);
  // The tables have the other half.
  if (kept + more > share / 2) let_go();
  if (more > share / 2) return;
  finished.emplace(item.query, Finished{item.answer, item.note});
  kept += more;
}

bool Answers::let_go() {
  bool const any = !finished.empty();
  decltype(finished)().swap(finished);
  kept = 0;
  return any;
}

void Answers::let_go_of_all() {
  let_go();
  solver.let_go();
}

}  // namespace zelk::cli
