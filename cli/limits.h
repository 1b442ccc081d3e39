#pragma once

#include <string_view>

#include "cli/demand.h"
#include "cli/query.h"

namespace zelk::cli {

/// What a query may ask for. Without limits a line of twenty characters could take all memory.
struct Limits {
  unsigned max_digits = 100'000;
  double max_bits = 4e9;  // half a gigabyte

  /// The demand of a query.
  /// Throws: Refusal, if it asks for more digits, or if the demand is too great.
  Demand check(Query const& query) const;

  /// Throws: Refusal, of a demand to hold more than `max_bits`, or to work through more than a
  /// thousand times as many.
  void check(Demand const& demand) const;
};

/// A size in bytes, with K, M, G or T behind it for powers of 1024; returns bits. Throws: Refusal.
double parse_memory(std::string_view text);

}  // namespace zelk::cli
