#pragma once

#include <pybind11/pybind11.h>

#include <atomic>
#include <chrono>
#include <limits>
#include <memory>

#include "zelk/work/scope.h"

/// What may stop a question: an interrupt, the end of the interpreter, and `with zelk.limits(...)`.
namespace zelk::python {

namespace py = pybind11;

/// What the questions asked in a block of Python may take together. In several threads each may
/// take what is left when it begins.
struct Allowance {
  std::shared_ptr<Allowance> outer;
  std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::time_point::max();
  std::atomic<double> work_left = std::numeric_limits<double>::infinity();
  double max_bits = 0;  // 0 where the block says nothing of them

  /// That of the block in which this is asked; null outside of all. Requires: the interpreter.
  static std::shared_ptr<Allowance> current();
};

/// Lets what this thread computes be stopped, while it lives. Made and destroyed with the
/// interpreter, which may be let go of in between.
class Watched {
 public:
  Watched();
  Watched(Watched const&) = delete;
  Watched& operator=(Watched const&) = delete;
  ~Watched();

  /// What `compute` returns, without the interpreter meanwhile.
  template <class Compute>
  static auto run(Compute const& compute);

  /// As an exception of Python.
  [[noreturn]] static void raise(work::Stopped const& stopped, std::string const& input);

 private:
  work::Limits limits() const;

  /// While it lives, others have the interpreter. Where that has ended meanwhile, a thread other
  /// than its main one must not want it back: it stays away for good.
  class Absence {
   public:
    Absence() = default;
    Absence(Absence const&) = delete;
    Absence& operator=(Absence const&) = delete;
    ~Absence();

   private:
    py::gil_scoped_release released;
  };

  Watched* outer;  // of the question that a handler of a signal interrupts
  std::shared_ptr<Allowance> allowance;
  work::Scope scope;
  double outer_max_bits;
};

template <class Compute>
auto Watched::run(Compute const& compute) {
  Watched const watched;
  Absence const others_go_on;
  return compute();
}

/// The limit of bits that the block says; 0 if it says none, or outside of what is watched.
double max_bits_of_block();

void define_allowance(py::module_& module);

}  // namespace zelk::python
