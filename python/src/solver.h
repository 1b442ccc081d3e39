#pragma once

#include <pybind11/pybind11.h>

/// The approximators that keep their answers.
namespace zelk::python {

void define_solver(pybind11::module_& module);

}  // namespace zelk::python
