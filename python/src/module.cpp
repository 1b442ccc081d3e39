#include <pybind11/pybind11.h>

#include <algorithm>
#include <exception>
#include <utility>

#include "python/src/allowance.h"
#include "python/src/arguments.h"
#include "python/src/convert.h"
#include "python/src/intervals.h"
#include "python/src/limits.h"
#include "python/src/questions.h"
#include "python/src/solver.h"
#include "zelk/convert/machine.h"
#include "zelk/real/elementary_functions.h"
#include "zelk/version.h"

namespace zelk::python {
namespace {

py::tuple limits() {
  auto const [max_digits, max_bits] = Limits::get();
  return py::make_tuple(max_digits, py::int_(static_cast<long>(max_bits)));
}

void set_limits(py::handle max_digits, py::handle max_bits) {
  auto limits = Limits::get();
  if (!max_digits.is_none()) limits.max_digits = to_count(max_digits, "max_digits");
  if (!max_bits.is_none())
    limits.max_bits = std::min(convert::to_double(to_number(max_bits), convert::Rounding::down),
                               real::ElementaryFunctions::greatest_max_bits);
  Limits::set(limits);
}

void define(py::module_& module) {
  import_names();
  module.attr("version") = ZELK_VERSION_STRING;
  define_intervals(module);
  define_allowance(module);
  define_questions(module);
  define_solver(module);
  module.def("limits", &limits);
  module.def("set_limits", &set_limits);
}

/// Fills the module, once for each process: neither pybind11 nor the names kept here know of a
/// second interpreter.
int execute(PyObject* module) {
  static bool is_defined = false;
  if (PyInterpreterState_Get() != PyInterpreterState_Main() || std::exchange(is_defined, true)) {
    PyErr_SetString(PyExc_ImportError,
                    "zelk serves one interpreter, the main one of a process, and is imported once");
    return -1;
  }
  try {
    auto defined = py::reinterpret_borrow<py::module_>(module);
    define(defined);
    return 0;
  } catch (py::error_already_set& error) {
    error.restore();
  } catch (std::exception const& error) {
    PyErr_SetString(PyExc_ImportError, error.what());
  }
  return -1;
}

}  // namespace
}  // namespace zelk::python

// As Python looks it up. NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" [[gnu::visibility("default")]] PyObject* PyInit__core() {
  static PyModuleDef_Slot slots[] = {{Py_mod_exec, reinterpret_cast<void*>(&zelk::python::execute)},
                                     {0, nullptr}};
  static PyModuleDef definition = {
      PyModuleDef_HEAD_INIT, "zelk._core", nullptr, 0, nullptr, slots, nullptr, nullptr, nullptr};
  return PyModuleDef_Init(&definition);
}
