#pragma once

#include "cli/query.h"

namespace zelk::cli {

/// What a query takes by a rough estimate, in bits.
struct Demand {
  double held;            // by its answer, printed too, and by what the library keeps for it
  double worked_through;  // by all steps together
};

/// What a query may ask for. Without limits a line of twenty characters could take all memory.
struct Limits {
  unsigned max_digits = 100'000;
  double max_bits = 4e9;  // half a gigabyte

  /// The demand of a query whose answer is printed with `places` decimals.
  /// Throws: Refusal, if it asks for more digits, or if the demand is too great.
  Demand check(Query const& query, unsigned places) const;

  /// Throws: Refusal, of a demand to hold more than `max_bits`, or to work through more than a
  /// thousand times as many.
  void check(Demand const& demand) const;
};

}  // namespace zelk::cli
