#pragma once

#include <pybind11/pybind11.h>

#include <stdexcept>
#include <string>

#include "python/src/allowance.h"
#include "zelk/convert/text.h"
#include "zelk/numbers/errors.h"

namespace zelk::python {

namespace py = pybind11;

/// Raises Python's exception in the place of the library's.
[[noreturn]] inline void raise(PyObject* type, std::string const& input, char const* reason) {
  PyErr_SetString(type, (input + ": " + reason).c_str());
  throw py::error_already_set();
}

/// What `compute` returns; other threads of Python go on meanwhile, and an interrupt is seen.
/// `input` tells in messages what it was computed from.
template <class Input, class Compute>
auto compute(Input const& input, Compute const& compute) {
  try {
    return Watched::run(compute);
  } catch (work::Stopped const& stopped) {
    Watched::raise(stopped, input());
  } catch (DivisionByZero const& error) {
    raise(PyExc_ZeroDivisionError, input(), error.what());
  } catch (std::domain_error const& error) {
    raise(PyExc_ValueError, input(), error.what());
  } catch (std::length_error const& error) {
    raise(PyExc_OverflowError, input(), error.what());
  } catch (std::invalid_argument const& error) {
    raise(PyExc_ValueError, input(), error.what());
  }
}

}  // namespace zelk::python
