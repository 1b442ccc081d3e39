#pragma once

#include <limits>
#include <optional>
#include <string_view>

#include "cli/demand.h"
#include "cli/query.h"
#include "zelk/work/scope.h"

namespace zelk::cli {

/// What a query may ask for. Without limits a line of twenty characters could take all memory.
struct Limits {
  unsigned max_digits = 100'000;
  double max_bits = 4e9;  // half a gigabyte

  static constexpr double unlimited = std::numeric_limits<double>::infinity();
  double max_seconds = unlimited;
  double max_work = unlimited;  // in the units of zelk::work

  /// The demand of a query.
  /// Throws: Refusal, if it asks for more digits, or if the demand is too great.
  Demand check(Query const& query) const;

  /// Throws: Refusal, of a demand to hold more than `max_bits`, or to work through more than a
  /// thousand times as many.
  void check(Demand const& demand) const;

  /// Computes, and prints, one answer. Throws: Refusal, if that takes longer than `max_seconds`, or
  /// more than `max_work`.
  template <class Answer>
  auto within(Answer const& answer) const;

 private:
  work::Limits of_work() const;
  [[noreturn]] void tell(work::Stopped const& stopped) const;
};

template <class Answer>
auto Limits::within(Answer const& answer) const {
  try {
    std::optional<work::Scope> scope;
    if (max_seconds != unlimited || max_work != unlimited) scope.emplace(of_work());
    return answer();
  } catch (work::Stopped const& stopped) {
    tell(stopped);
  }
}

/// A size in bytes, with K, M, G or T behind it for powers of 1024; returns bits. Throws: Refusal.
double parse_memory(std::string_view text);

/// A positive number of seconds, or units, as a decimal. Throws: Refusal.
double parse_quantity(std::string_view text);

}  // namespace zelk::cli
