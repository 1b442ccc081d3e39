#pragma once

#include "cli/demand.h"
#include "cli/query.h"

namespace zelk::python {

/// What a question may ask for: as of the command, and for all threads.
struct Limits {
  unsigned max_digits = 100'000;
  double max_bits = 4e9;  // half a gigabyte

  static Limits get();
  static void set(Limits const& limits);
};

/// Throws: std::length_error, if a query asks for more digits than the limits allow, or if it would
/// hold more than `max_bits`, or work through more than a thousand times as many.
void require_limits(cli::Query const& query, cli::Demand const& demand);

/// The same of the demand that `estimate` finds.
template <class Estimate>
void require_limits(cli::Query const& query, Estimate const& estimate) {
  require_limits(query, estimate(query, 0));
}

}  // namespace zelk::python
