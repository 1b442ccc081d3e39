#include "python/src/intervals.h"

#include <cmath>
#include <stdexcept>
#include <string>
#include <string_view>

#include "cli/demand.h"
#include "cli/query.h"
#include "python/src/arguments.h"
#include "python/src/ask.h"
#include "python/src/convert.h"
#include "zelk/convert/decimal.h"
#include "zelk/convert/text.h"
#include "zelk/numbers/functions.h"
#include "zelk/real/interval.h"

namespace zelk::python {
namespace {

using real::Interval;

double log2_of(mpz_srcptr n) { return static_cast<double>(mpz_sizeinbase(n, 2)) - 1; }
double log2_of(QNumber const& q) { return log2_of(q.numerator()) + log2_of(q.denominator()); }

/// The bits of both ends, but none of 0 and 1, whose powers are as short.
double size_of(Interval const& x) { return log2_of(x.lower()) + log2_of(x.upper()); }

/// What `find` makes of numbers of so many bits by a few products, limited with their room.
template <class Input, class Find>
auto ask_about(double bits, Input const& input, Find const& find) {
  auto const estimate = [&](auto const&...) { return cli::Demand{20 * bits, 20 * bits}; };
  return ask(input, {.function = nullptr}, estimate, find);
}

py::tuple to_ends(Interval const& x) { return to_pair({x.lower(), x.upper()}); }

struct Operation {
  std::string_view symbol;
  Interval (*of)(Interval const& a, Interval const& b);
};

// clang-format off
constexpr Operation operations[] = {
    {"+", real::operator+}, {"-", real::operator-}, {"*", real::operator*}, {"/", real::operator/},
};
// clang-format on

std::string described(py::handle a, std::string_view symbol, py::handle b) {
  return shown(a) + ' ' + std::string(symbol) + ' ' + shown(b);
}

/// Requires: the symbol is one of those above.
py::tuple combined(std::string_view symbol, py::handle left, py::handle right) {
  auto const* operation = operations;
  while (operation->symbol != symbol) ++operation;
  Interval const a = to_interval(left), b = to_interval(right);
  return to_ends(ask_about(
      size_of(a) + size_of(b), [&] { return described(left, symbol, right); },
      [&] { return operation->of(a, b); }));
}

/// Of an integer that is a machine word.
long to_whole(py::handle object, char const* otherwise) {
  auto const q = to_number(object);
  if (!q.is_integer()) throw py::value_error(otherwise);
  if (mpz_fits_slong_p(q.numerator()) != 0) return mpz_get_si(q.numerator());
  PyErr_SetString(PyExc_OverflowError, (shown(object) + " is beyond 64 bits").c_str());
  throw py::error_already_set();
}

py::tuple power(py::handle base, py::handle exponent) {
  Interval const x = to_interval(base);
  long const n = to_whole(exponent,
                          "only whole powers are exact: zelk.root and zelk.evaluate"
                          " enclose others");
  return to_ends(ask_about(
      size_of(x) * std::abs(static_cast<double>(n)),
      [&] { return described(base, "**", exponent); }, [&] { return real::pow(x, n); }));
}

/// The symbol is one of < <= > >=. What the numbers of one interval are to those of the other.
bool compare(std::string_view symbol, py::handle left, py::handle right) {
  Interval const a = to_interval(left), b = to_interval(right);
  return ask_about(
      size_of(a) + size_of(b), [&] { return described(left, symbol, right); },
      [&] {
        auto const& [low, high] = symbol[0] == '<' ? std::tie(a, b) : std::tie(b, a);
        bool const may_be_equal = symbol.size() > 1;
        if (low.upper() < high.lower() || (may_be_equal && low.upper() == high.lower()))
          return true;
        if (high.upper() < low.lower() || (!may_be_equal && high.upper() == low.lower()))
          return false;
        throw std::domain_error("not decided, since they overlap");
      });
}

std::string decimal(py::handle object, py::handle places) {
  unsigned const count = to_count(places, "places");
  Interval const x = to_interval(object);
  return ask_about(
      size_of(x) + 1.6 * count, [] { return std::string("decimal"); },
      [&] {
        return convert::to_decimal({x.lower(), x.upper()}, count);
      });
}

/// The ends rounded outward to multiples of 10^-places.
py::tuple rounded(py::handle object, py::handle places) {
  Interval const x = to_interval(object);
  long const count = to_whole(places, "places: expected a whole number");
  return to_ends(ask_about(
      size_of(x) + 4 * std::abs(static_cast<double>(count)), [] { return std::string("round"); },
      [&] {
        auto const power_of_ten = zelk::pow(10, count);
        return Interval(floor(x.lower() * power_of_ten) / power_of_ten,
                        ceil(x.upper() * power_of_ten) / power_of_ten);
      }));
}

std::string digits(py::handle number) {
  auto const q = to_number(number);
  py::gil_scoped_release const release;
  return convert::to_string(q);
}

}  // namespace

void define_intervals(py::module_& module) {
  module.def("combined", &combined);
  module.def("power", &power);
  module.def("compare", &compare);
  module.def("decimal", &decimal);
  module.def("rounded", &rounded);
  module.def("digits", &digits);
  module.def("ends", [](py::handle object) { return to_ends(to_interval(object)); });
  module.def("set_enclosure", &set_enclosure);
}

}  // namespace zelk::python
