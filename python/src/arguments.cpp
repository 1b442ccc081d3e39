#include "python/src/arguments.h"

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/demand.h"
#include "cli/query.h"
#include "python/src/ask.h"
#include "python/src/compute.h"
#include "python/src/convert.h"
#include "python/src/limits.h"
#include "zelk/convert/text.h"
#include "zelk/real/enclose.h"
#include "zelk/real/interval.h"
#include "zelk/real/parse.h"

namespace zelk::python {
namespace {

/// Plain numbers are read at once; the rest has what only expressions have, or an error.
std::optional<QNumber> plain_number(std::string_view text) {
  if (text.find_first_not_of("0123456789./-eE") != std::string_view::npos) return std::nullopt;
  try {
    return read_text(text, [&] { return convert::parse_rational(text); });
  } catch (convert::ParseError const&) {
    return std::nullopt;
  }
}

real::Expression expression_in(std::string_view text) {
  if (auto const number = plain_number(text)) return *number;
  return read_text(text, [&] { return real::parse_expression(text); });
}

}  // namespace

std::string_view text_of(py::handle object) {
  if (!PyUnicode_Check(object.ptr()))
    throw py::type_error(std::string("expected a text, not ") + Py_TYPE(object.ptr())->tp_name);
  Py_ssize_t size = 0;
  char const* const text = PyUnicode_AsUTF8AndSize(object.ptr(), &size);
  if (text == nullptr) throw py::error_already_set();
  return {text, static_cast<std::size_t>(size)};
}

QNumber to_number(py::handle object) {
  if (!PyUnicode_Check(object.ptr())) return from_rational(object);
  auto const text = text_of(object);
  if (auto number = plain_number(text)) return *std::move(number);
  cli::Query query{.function = nullptr};
  query.expressions = {read_text(text, [&] { return real::parse_expression(text); })};
  return ask([&] { return convert::quoted(text); }, query, cli::demand_of_expression,
             [&] {
               real::ElementaryFunctions functions(Limits::get().max_bits);
               auto const bounds = real::enclose(functions, query.expressions[0], 0).bounds;
               if (!bounds.is_point()) throw std::domain_error("not known to be a rational number");
               return bounds.lower();
             });
}

bool is_pair(py::handle object) { return PyTuple_Check(object.ptr()) || is_enclosure(object); }

real::Interval to_interval(py::handle object) {
  if (!is_pair(object)) return to_number(object);
  auto const ends = py::reinterpret_steal<py::tuple>(PySequence_Tuple(object.ptr()));
  if (!ends) throw py::error_already_set();
  if (ends.size() != 2) throw py::type_error("expected a number, or the two ends of an interval");
  return compute([&] { return shown(object); },
                 [lower = to_number(ends[0]), upper = to_number(ends[1])] {
                   return real::Interval(lower, upper);
                 });
}

real::Expression to_expression(py::handle object) {
  if (PyUnicode_Check(object.ptr())) return expression_in(text_of(object));
  return to_interval(object);
}

real::Expression composed(real::Expression const& formula, real::Expression const& x) {
  std::vector<real::Kind> kinds;
  std::vector<real::Interval> numbers;
  auto constant = formula.numbers().begin();
  for (auto const kind : formula.postfix()) {
    if (kind != real::Kind::variable) {
      kinds.push_back(kind);
      if (kind == real::Kind::number) numbers.push_back(*constant++);
      continue;
    }
    kinds.insert(kinds.end(), x.postfix().begin(), x.postfix().end());
    numbers.insert(numbers.end(), x.numbers().begin(), x.numbers().end());
  }
  return real::Expression::from_postfix(std::move(kinds), std::move(numbers));
}

unsigned to_count(py::handle object, char const* name, unsigned most) {
  auto const integer = py::reinterpret_steal<py::object>(PyNumber_Index(object.ptr()));
  if (!integer) throw py::error_already_set();
  int beyond = 0;
  long const count = PyLong_AsLongAndOverflow(integer.ptr(), &beyond);
  if (beyond < 0 || (beyond == 0 && count < 0))
    throw py::value_error(std::string(name) + ": a count cannot be negative");
  if (beyond == 0 && count <= static_cast<long>(most)) return static_cast<unsigned>(count);
  PyErr_Format(PyExc_OverflowError, "%s: a count is at most %u", name, most);
  throw py::error_already_set();
}

std::string shown(py::handle object) {
  if (PyUnicode_Check(object.ptr())) return convert::quoted(text_of(object));
  if (is_pair(object)) {
    std::string text;
    for (auto const part : py::reinterpret_borrow<py::iterable>(object))
      text += (text.empty() ? "[" : ", ") + shown(part);
    return text + ']';
  }
  constexpr std::size_t most = 40;
  auto text = convert::to_string(from_rational(object));
  if (text.size() > most) text = text.substr(0, most) + "...";
  return text;
}

}  // namespace zelk::python
