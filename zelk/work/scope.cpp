#include "zelk/work/scope.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>

#include "zelk/work/poll.h"

namespace zelk::work {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto question_interval = std::chrono::milliseconds(50);

std::string describe(Reason reason, double work) {
  char const* const why = reason == Reason::request    ? "stopped on request"
                          : reason == Reason::deadline ? "not finished in time"
                                                       : "not finished within its work";
  char text[96];
  std::snprintf(text, sizeof text, "%s: %.3g units of work were done", why, work);
  return text;
}

}  // namespace

constinit thread_local Meter* innermost = nullptr;

double product(double bits) noexcept { return bits * std::floor(std::sqrt(bits)); }

double gcd(double bits) noexcept { return product(bits) * std::log2(bits + 2); }

Meter::Meter() noexcept : outer(innermost) { innermost = this; }

Meter::~Meter() { innermost = outer; }

void count(double work, unsigned long steps) {
  // All count before one may throw. Only this thread writes.
  for (auto* meter = innermost; meter != nullptr; meter = meter->outer) {
    meter->step_count.store(meter->steps() + steps, std::memory_order_relaxed);
    meter->work_count.store(meter->work() + work, std::memory_order_relaxed);
  }
  for (auto* meter = innermost; meter != nullptr; meter = meter->outer) meter->check();
}

Stopped::Stopped(Reason stop_reason, double work_done)
    : std::runtime_error(describe(stop_reason, work_done)), why(stop_reason), done(work_done) {}

Scope::Scope(Limits scope_limits)
    : limits(std::move(scope_limits)),
      next_question(limits.is_unwanted ? Clock::now() + question_interval
                                       : Clock::time_point::max()) {}

void Scope::check() {
  if (work() > limits.work) throw Stopped(Reason::work, work());
  if (limits.stop.stop_requested()) throw Stopped(Reason::request, work());
  auto const earliest = std::min(limits.deadline, next_question);
  if (earliest == Clock::time_point::max()) return;
  auto const now = Clock::now();
  if (now >= limits.deadline) throw Stopped(Reason::deadline, work());
  if (now < next_question) return;
  next_question = now + question_interval;  // what the host does to answer may be counted too
  if (limits.is_unwanted()) throw Stopped(Reason::request, work());
}

}  // namespace zelk::work
