#pragma once

#include <pybind11/pybind11.h>

/// The functions that keep nothing between two calls.
namespace zelk::python {

void define_questions(pybind11::module_& module);

}  // namespace zelk::python
