#pragma once

#include "cli/query.h"

namespace zelk::cli {

/// What a query may ask for. Without limits a line of twenty characters could take all memory.
struct Limits {
  unsigned max_digits = 100'000;
  double max_bits = 4e9;  // half a gigabyte

  /// Throws: Refusal, of a query that asks for more digits, or whose answer together with what the
  /// library keeps for it would take more bits by a rough estimate.
  void check(Query const& query) const;
};

}  // namespace zelk::cli
