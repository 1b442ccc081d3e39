#pragma once

#include "cli/demand.h"

namespace zelk::python {

/// What a question may ask for: as of the command, and for all threads.
struct Limits {
  unsigned max_digits = 100'000;
  double max_bits = 4e9;  // half a gigabyte

  static Limits get();
  static void set(Limits const& limits);
};

/// Throws: std::length_error, if there are more digits than the limits allow, or of a demand to
/// hold more than `max_bits`, or to work through more than a thousand times as many.
void check_digits(unsigned digits);
void check_demand(cli::Demand const& demand);

}  // namespace zelk::python
