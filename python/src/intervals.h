#pragma once

#include <pybind11/pybind11.h>

/// What enclosures are combined to, compared by and shown as.
namespace zelk::python {

void define_intervals(pybind11::module_& module);

}  // namespace zelk::python
