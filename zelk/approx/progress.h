#pragma once

#include "zelk/config.h"
#include "zelk/work/meter.h"

namespace zelk::na {

/// Counts, while it lives, the steps of the long computations of the thread that made it: terms of
/// the series of `PowerSeriesApproximator`, and convergents of numbers beyond words. For hosts that
/// show people who wait how far it has got.
///
/// Requires: the same thread destroys it; of several the last one first.
class StepCounter final : private work::Meter {
 public:
  /// So far. Any thread may ask.
  using Meter::steps;
};

}  // namespace zelk::na
