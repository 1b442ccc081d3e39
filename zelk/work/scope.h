#pragma once

#include <chrono>
#include <functional>
#include <limits>
#include <stdexcept>
#include <stop_token>

#include "zelk/config.h"
#include "zelk/work/meter.h"

namespace zelk::work {

/// Why a computation has been stopped.
enum class Reason { request, work, deadline };

/// Thrown where a `Scope` stops a computation. Nothing is lost by it: a number has the value that
/// it had, a table whole records, and the same question asked again has the same answer.
class ZELK_EXPORT Stopped : public std::runtime_error {
 public:
  Stopped(Reason stop_reason, double work_done);

  Reason reason() const noexcept { return why; }

  /// How far it got, in units of work.
  double work() const noexcept { return done; }

 private:
  Reason why;
  double done;
};

/// What the computations of a thread may take.
struct Limits {
  /// In units: a product of two numbers of b bits counts b^(3/2), a division four times as much,
  /// and a pass over such a number 8 b. What an object has kept from questions before is not
  /// computed, and so not counted: the same questions to fresh objects, in the same order, have the
  /// same outcome on every machine.
  double work = std::numeric_limits<double>::infinity();

  /// By the clock.
  std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::time_point::max();

  /// On request, which may come from any thread.
  std::stop_token stop = {};

  /// Called now and then, every 50 ms or somewhat later, on the computing thread: true asks for a
  /// stop. It may throw in place of that, but not ask the objects that are computing.
  std::function<bool()> is_unwanted = nullptr;
};

/// Stops, while it lives, whatever this library computes on the thread that made it, once that goes
/// beyond the limits, by `Stopped`: the series, walks, searches and functions of all folders, texts
/// and the checker of certificates. Of several scopes the limits of all hold.
///
/// It is asked before each block of terms, each refinement, each step of a walk and each node of a
/// splitting: a stop takes effect within milliseconds, or after the one product, division, root or
/// greatest common divisor of GMP that is under way. What is shorter than a microsecond or so, such
/// as arithmetic of numbers, is neither asked about nor counted. Without a scope, asking is a
/// look at one word for each block.
///
///     std::stop_source source;
///     Scope const scope({.deadline = std::chrono::steady_clock::now() + 2s,
///                            .stop = source.get_token()});
///     try { series.maclaurin_exp_bounds(x, 100000); } catch (Stopped const& stopped) { ... }
///
/// Requires: the same thread destroys it; of several the last one first.
class ZELK_EXPORT Scope final : private Meter {
 public:
  explicit Scope(Limits scope_limits);

  /// So far, in units. Any thread may ask.
  double work() const noexcept { return Meter::work(); }

 private:
  void check() override;

  Limits limits;
  std::chrono::steady_clock::time_point next_question;
};

}  // namespace zelk::work
