#pragma once

#include <atomic>

#include "zelk/config.h"

namespace zelk::work {

/// Counts, while it lives, the work of the thread that made it, as all others do that live.
///
/// Requires: the same thread destroys it; of several the last one first.
class ZELK_EXPORT Meter {
 public:
  Meter() noexcept;
  Meter(Meter const&) = delete;
  Meter& operator=(Meter const&) = delete;

  /// So far. Any thread may ask.
  unsigned long steps() const noexcept { return step_count.load(std::memory_order_relaxed); }
  double work() const noexcept { return work_count.load(std::memory_order_relaxed); }

 protected:
  ~Meter();

 private:
  friend void count(double, unsigned long);

  /// Called after each count. Throws: Stopped.
  virtual void check() {}

  std::atomic<unsigned long> step_count = 0;
  std::atomic<double> work_count = 0;
  Meter* outer;
};

}  // namespace zelk::work
