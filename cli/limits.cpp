#include "cli/limits.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <string>
#include <system_error>

#include "cli/functions.h"
#include "zelk/convert/machine.h"
#include "zelk/convert/text.h"

namespace zelk::cli {
namespace {

[[noreturn]] void refuse(std::string const& reason) {
  throw Refusal(Refusal::Kind::unanswerable, reason);
}

struct Text {
  char text[32];
};

/// So many bits in bytes, as people read them.
Text bytes(double bits) {
  constexpr char const* units[] = {"bytes", "KiB", "MiB", "GiB", "TiB"};
  double size = bits / 8;
  std::size_t unit = 0;
  for (; size >= 1024 && unit + 1 < std::size(units); ++unit) size /= 1024;
  Text result;
  std::snprintf(result.text, sizeof result.text, size < 1e6 ? "%.4g %s" : "%.1e %s", size,
                units[unit]);
  return result;
}

}  // namespace

Demand Limits::check(Query const& query) const {
  if (query.digits && *query.digits > max_digits)
    refuse(std::to_string(*query.digits) + " digits are more than --max-digits " +
           std::to_string(max_digits));
  Demand const demand = query.function->demand(query);
  check(demand);
  return demand;
}

void Limits::check(Demand const& demand) const {
  if (demand.held <= max_bits && demand.worked_through <= 1000 * max_bits) return;
  bool const holds = demand.held > max_bits;
  double const bits = holds ? demand.held : demand.worked_through;
  char text[256];
  std::snprintf(text, sizeof text,
                "would %s about %s (%.1e bits), more than %s%s (--max-bits %.0f); a greater "
                "--max-memory allows it",
                holds ? "take" : "work through", bytes(bits).text, bits,
                holds ? "" : "a thousand times ", bytes(max_bits).text, max_bits);
  refuse(text);
}

work::Limits Limits::of_work() const {
  work::Limits limits{.work = max_work};
  // Beyond a century no clock is asked.
  if (constexpr double century = 3e9; max_seconds < century)
    limits.deadline = std::chrono::steady_clock::now() +
                      std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                          std::chrono::duration<double>(max_seconds));
  return limits;
}

void Limits::tell(work::Stopped const& stopped) const {
  char text[160];
  if (stopped.reason() == work::Reason::deadline)
    std::snprintf(text, sizeof text, "not done in %g seconds (--max-time), by %.3g units of work",
                  max_seconds, stopped.work());
  else
    std::snprintf(text, sizeof text, "takes more than %g units of work (--max-work)", max_work);
  refuse(text);
}

double parse_quantity(std::string_view text) {
  auto const value = convert::to_double(parse_number(Word{text}), convert::Rounding::nearest);
  if (!(value > 0))
    throw Refusal(Refusal::Kind::malformed, convert::quoted(text) + ": expected a positive number");
  return value;
}

double parse_memory(std::string_view text) {
  constexpr std::string_view units = "KMGT";
  auto number = text;
  int exponent = 0;
  if (auto const unit = text.empty() ? std::string_view::npos : units.find(text.back());
      unit != std::string_view::npos) {
    number.remove_suffix(1);
    exponent = 10 * static_cast<int>(unit + 1);
  }
  unsigned long value = 0;
  auto const* const end = number.data() + number.size();
  auto const [rest, error] = std::from_chars(number.data(), end, value);
  if (number.empty() || rest != end || error != std::errc{})
    throw Refusal(Refusal::Kind::malformed,
                  convert::quoted(text) + ": expected a size in bytes, such as 500M or 4G");
  return std::ldexp(static_cast<double>(value), exponent + 3);
}

}  // namespace zelk::cli
