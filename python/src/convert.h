#pragma once

#include <gmp.h>
#include <pybind11/pybind11.h>

#include <utility>

#include "zelk/numbers/q_number.h"

/// Python's numbers in and out. Integers beyond a word travel as bytes, in linear time.
namespace zelk::python {

namespace py = pybind11;

/// The exact value of a `numbers.Rational` or a finite `Decimal`; Python's TypeError for anything
/// else.
QNumber from_rational(py::handle object);

/// The same of an integer, or of what Python takes for one.
QNumber from_integer(py::handle object);

py::object to_int(mpz_srcptr n);

/// A `fractions.Fraction`. Where the parts are long, no gcd of them is taken again.
py::object to_fraction(QNumber const& q);

py::tuple to_pair(std::pair<QNumber, QNumber> const& bounds);

/// Whether it is of the class that was last said to be that of enclosures.
bool is_enclosure(py::handle object);
void set_enclosure(py::handle type);

/// Finds what is used of Python's modules. To be called before all else.
void import_names();

}  // namespace zelk::python
