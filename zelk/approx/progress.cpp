#include "zelk/approx/progress.h"

#include "zelk/approx/internal/count_steps.h"

namespace zelk::na {

namespace {

constinit thread_local StepCounter* innermost = nullptr;

}  // namespace

StepCounter::StepCounter() noexcept : outer(innermost) { innermost = this; }

StepCounter::~StepCounter() { innermost = outer; }

void count_steps(unsigned long steps) noexcept {
  if (innermost != nullptr) innermost->count.fetch_add(steps, std::memory_order_relaxed);
}

}  // namespace zelk::na
