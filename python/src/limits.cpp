#include "python/src/limits.h"

#include <atomic>
#include <cstdio>
#include <stdexcept>
#include <string>

#include "python/src/allowance.h"

namespace zelk::python {
namespace {

std::atomic<unsigned> max_digits = Limits{}.max_digits;
std::atomic<double> max_bits = Limits{}.max_bits;

}  // namespace

Limits Limits::get() {
  double const of_block = max_bits_of_block();
  return {python::max_digits, of_block != 0 ? of_block : python::max_bits.load()};
}

void Limits::set(Limits const& limits) {
  python::max_digits = limits.max_digits;
  python::max_bits = limits.max_bits;
}

void require_limits(cli::Query const& query, cli::Demand const& demand) {
  auto const [most_digits, most] = Limits::get();
  if (query.digits && *query.digits > most_digits)
    throw std::length_error(std::to_string(*query.digits) + " digits are more than max_digits, " +
                            std::to_string(most_digits) + "; zelk.set_limits allows more");
  bool const holds = demand.held > most;
  if (!holds && demand.worked_through <= 1000 * most) return;
  char text[256];
  std::snprintf(text, sizeof text,
                "would %s about %.1e bits, more than %s%.1e (max_bits); zelk.set_limits, or "
                "zelk.limits, allows more",
                holds ? "take" : "work through", holds ? demand.held : demand.worked_through,
                holds ? "" : "a thousand times ", most);
  throw std::length_error(text);
}

}  // namespace zelk::python
