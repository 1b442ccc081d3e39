#pragma once

namespace zelk::na {

/// Tells the thread's `StepCounter`, if there is one. A step is worth many times this call.
void count_steps(unsigned long steps) noexcept;

}  // namespace zelk::na
