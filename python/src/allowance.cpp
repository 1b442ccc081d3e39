#include "python/src/allowance.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>

namespace zelk::python {
namespace {

using Clock = std::chrono::steady_clock;

/// What all questions of the process share. Never destroyed: threads may outlive the interpreter.
struct Process {
  std::stop_source end;
  std::atomic<unsigned long> main_thread{0};  // where Python handles signals
  std::atomic<int> watched = 0;
  py::object stopped;  // the class of its exceptions
  py::object context;  // a ContextVar with the allowance
};

Process& process() {
  static auto* const one = new Process;
  return *one;
}

thread_local double block_max_bits = 0;
thread_local Watched* innermost = nullptr;

bool is_main_thread() { return PyThread_get_thread_ident() == process().main_thread; }

/// Runs Python's handlers of signals that have come. Throws what they raise.
bool handle_signals() {
  py::gil_scoped_acquire const interpreter;
  if (PyErr_CheckSignals() != 0) throw py::error_already_set();
  return false;
}

Clock::time_point after(double seconds) {
  constexpr double century = 3e9;
  return seconds < century ? Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                                std::chrono::duration<double>(seconds))
                           : Clock::time_point::max();
}

double positive(py::handle number, char const* name) {
  double const value = PyFloat_AsDouble(number.ptr());
  if (PyErr_Occurred() != nullptr) throw py::error_already_set();
  if (!(value > 0)) throw py::value_error(std::string(name) + " must be positive");
  return value;
}

std::shared_ptr<Allowance> make_allowance(py::handle seconds, py::handle work, py::handle bits) {
  auto made = std::make_shared<Allowance>();
  made->outer = Allowance::current();
  if (!seconds.is_none()) made->deadline = after(positive(seconds, "seconds"));
  if (!work.is_none()) made->work_left = positive(work, "work");
  if (!bits.is_none()) made->max_bits = positive(bits, "bits");
  return made;
}

/// Ends what other threads compute, and waits for that, as long as a product may take.
void stop_all() {
  process().end.request_stop();
  py::gil_scoped_release const others_go_on;
  auto const latest = Clock::now() + std::chrono::seconds(1);
  while (process().watched != 0 && Clock::now() < latest)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

/// Of the thread that imports the package, and of the one that is left after a fork.
void set_main_thread() {
  process().main_thread = PyThread_get_thread_ident();
  process().watched = 0;
}

}  // namespace

std::shared_ptr<Allowance> Allowance::current() {
  PyObject* found = nullptr;
  if (PyContextVar_Get(process().context.ptr(), nullptr, &found) < 0) throw py::error_already_set();
  auto const value = py::reinterpret_steal<py::object>(found);
  return value && !value.is_none() ? value.cast<std::shared_ptr<Allowance>>() : nullptr;
}

double max_bits_of_block() { return block_max_bits; }

Watched::Watched()
    : outer(innermost),
      allowance(Allowance::current()),
      scope(limits()),
      outer_max_bits(block_max_bits) {
  block_max_bits = 0;
  for (auto const* each = allowance.get(); each != nullptr; each = each->outer.get())
    if (each->max_bits != 0 && (block_max_bits == 0 || each->max_bits < block_max_bits))
      block_max_bits = each->max_bits;
  innermost = this;
  ++process().watched;
}

Watched::~Watched() {
  --process().watched;
  innermost = outer;
  block_max_bits = outer_max_bits;
  // The question that was interrupted, if there is one, counts this work in its own blocks.
  auto const* const counted = outer != nullptr ? outer->allowance.get() : nullptr;
  for (auto* each = allowance.get(); each != counted && each != nullptr; each = each->outer.get())
    each->work_left.store(each->work_left - scope.work());
}

work::Limits Watched::limits() const {
  work::Limits limits;
  for (auto const* each = allowance.get(); each != nullptr; each = each->outer.get()) {
    limits.work = std::min(limits.work, std::max(0.0, each->work_left.load()));
    limits.deadline = std::min(limits.deadline, each->deadline);
  }
  if (is_main_thread())
    limits.is_unwanted = handle_signals;
  else
    limits.stop = process().end.get_token();
  return limits;
}

Watched::Absence::~Absence() {
  if (!process().end.stop_requested() || is_main_thread()) return;
  --process().watched;
  for (;;) pause();
}

void Watched::raise(work::Stopped const& stopped, std::string const& input) {
  PyErr_SetString(process().stopped.ptr(), (input + ": " + stopped.what()).c_str());
  throw py::error_already_set();
}

void define_allowance(py::module_& module) {
  auto& shared = process();
  shared.context = py::module_::import("contextvars").attr("ContextVar")("zelk.limits");
  shared.stopped = py::reinterpret_steal<py::object>(
      PyErr_NewExceptionWithDoc("zelk.Stopped", "A question went beyond the limits of its block.",
                                PyExc_RuntimeError, nullptr));
  set_main_thread();
  py::module_::import("os").attr("register_at_fork")(py::arg("after_in_child") =
                                                         py::cpp_function(&set_main_thread));
  py::module_::import("atexit").attr("register")(py::cpp_function(&stop_all));
  py::class_<Allowance, std::shared_ptr<Allowance>>(module, "Allowance")
      .def(py::init(&make_allowance));
  module.attr("Stopped") = shared.stopped;
  module.attr("allowance") = shared.context;
}

}  // namespace zelk::python
