#pragma once

#include <pybind11/pybind11.h>

#include <climits>
#include <string>
#include <string_view>

#include "python/src/allowance.h"
#include "zelk/convert/text.h"
#include "zelk/numbers/q_number.h"
#include "zelk/real/expression.h"
#include "zelk/real/interval.h"

/// What people give to the functions: rational numbers, texts, and pairs of them for intervals.
namespace zelk::python {

namespace py = pybind11;

/// Of a text, which has to outlive it. Throws: Python's exception for anything else.
std::string_view text_of(py::handle object);

/// A rational number; of a text, the value that its expression is known to have.
/// Throws: Python's exception for what is none.
QNumber to_number(py::handle object);

/// What `read` makes of a text; of a long one as a question is answered, so that it can be stopped.
template <class Read>
auto read_text(std::string_view text, Read const& read) {
  constexpr std::size_t long_text = 1 << 16;
  if (text.size() < long_text) return read();
  try {
    return Watched::run(read);
  } catch (work::Stopped const& stopped) {
    Watched::raise(stopped, convert::quoted(text));
  }
}

/// The pair of a tuple or an enclosure, or a point.
/// Throws: Python's exception for what is none, or if the ends are not in order.
real::Interval to_interval(py::handle object);

/// A rational number, an expression, or an interval.
real::Expression to_expression(py::handle object);

/// The formula with `x` in place of its variable.
real::Expression composed(real::Expression const& formula, real::Expression const& x);

/// Whether it is a tuple or an enclosure.
bool is_pair(py::handle object);

/// A whole number from 0 to `most`. Throws: TypeError, ValueError or OverflowError, with the name.
unsigned to_count(py::handle object, char const* name, unsigned most = UINT_MAX);

/// As messages show it: short.
std::string shown(py::handle object);

}  // namespace zelk::python
