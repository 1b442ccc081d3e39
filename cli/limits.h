#pragma once

#include "cli/query.h"

namespace zelk::cli {

/// What a query may ask for. Without limits a line of twenty characters could take all memory.
struct Limits {
  unsigned max_digits = 100'000;
  double max_bits = 4e9;  // half a gigabyte

  /// Throws: Refusal, of a query that asks for more digits, or that by a rough estimate would take
  /// more bits, for its answer printed with `places` decimals and for what the library keeps for
  /// it, or would work through more than a thousand times as many.
  void check(Query const& query, unsigned places) const;
};

}  // namespace zelk::cli
