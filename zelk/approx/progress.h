#pragma once

#include <atomic>

#include "zelk/config.h"

namespace zelk::na {

/// Counts, while it lives, the steps of the long computations of the thread that made it: terms of
/// the series of `PowerSeriesApproximator`, and convergents of numbers beyond words. For hosts that
/// show people who wait how far it has got.
///
/// Requires: the same thread destroys it; of several the last one first. Only that one counts.
class ZELK_EXPORT StepCounter {
 public:
  StepCounter() noexcept;
  StepCounter(StepCounter const&) = delete;
  StepCounter& operator=(StepCounter const&) = delete;
  ~StepCounter();

  /// So far. Any thread may ask.
  unsigned long steps() const noexcept { return count.load(std::memory_order_relaxed); }

 private:
  friend void count_steps(unsigned long) noexcept;

  std::atomic<unsigned long> count = 0;
  StepCounter* outer;
};

}  // namespace zelk::na
