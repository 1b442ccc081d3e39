#include "python/src/solver.h"

#include <algorithm>
#include <climits>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/demand.h"
#include "cli/query.h"
#include "python/src/arguments.h"
#include "python/src/compute.h"
#include "python/src/convert.h"
#include "python/src/limits.h"
#include "zelk/approx/convergents.h"
#include "zelk/approx/cosine.h"
#include "zelk/approx/power_series_approximator.h"
#include "zelk/approx/rational_approximator.h"
#include "zelk/certify/prove.h"
#include "zelk/certify/write.h"

namespace zelk::python {
namespace {

using Series = na::PowerSeriesApproximator;
using Bounds = Series::Bounds;

/// All that is known here of one kind of bounds.
struct Function {
  std::string_view name;
  cli::Demand (&demand)(cli::Query const& query, unsigned places);
  bool (*is_kept)(Series& series, QNumber const& x, unsigned digits);
  Bounds (*bounds)(Series& series, QNumber const& x, unsigned digits);
  verify::Certificate (*certify)(Series& series, QNumber const& x, unsigned digits,
                                 real::Interval const& bounds);  // null where there is none
};

template <auto records>
bool has_record(Series& series, QNumber const& x, unsigned digits) {
  return (series.*records)().find({x, digits}) != (series.*records)().end();
}

template <auto bounds>
Bounds bounds_of(Series& series, QNumber const& x, unsigned digits) {
  return (series.*bounds)(x, digits);
}

constexpr auto exp_is_kept = has_record<&Series::exp_records>;
constexpr auto sin_is_kept = has_record<&Series::sin_records>;

Function const functions[] = {
    {"exp", cli::demand_of_exp, exp_is_kept, bounds_of<&Series::maclaurin_exp_bounds>,
     certify::certify_exp},
    {"exp'", cli::demand_of_exp, exp_is_kept, bounds_of<&Series::maclaurin_exp_der_bounds>,
     nullptr},
    {"sin", cli::demand_of_sine, sin_is_kept, bounds_of<&Series::maclaurin_sin_bounds>,
     certify::certify_sin},
    {"sin'", cli::demand_of_sine, sin_is_kept, bounds_of<&Series::maclaurin_sin_der_bounds>,
     nullptr},
    {"cos", cli::demand_of_sine, sin_is_kept, na::cosine_bounds, certify::certify_cos},
    {"pi", cli::demand_of_pi,
     [](Series& series, QNumber const&, unsigned digits) {
       return series.pi_records().find(digits) != series.pi_records().end();
     },
     [](Series& series, QNumber const&, unsigned digits) {
       return series.machin_pi_bounds(digits);
     },
     [](Series&, QNumber const&, unsigned, real::Interval const& bounds) {
       return certify::certify_pi(bounds);
     }},
};

Function const& function_named(std::string_view name) {
  return *std::ranges::find(functions, name, &Function::name);
}

/// A question as messages name it.
std::string described(std::string const& name, py::handle number, unsigned digits) {
  std::string const point = name == "pi" ? "" : '(' + shown(number) + ')';
  return name + point + " to " + std::to_string(digits) + " digits";
}

/// Approximators that one thread uses at a time, while others wait.
class Solver {
 public:
  /// The answer of an approximator to a question about `number`; Python goes on meanwhile.
  template <class Input, class Answer>
  auto ask(Input const& input, py::handle number, Answer const& answer) {
    return compute(input, [&, x = to_number(number)] {
      std::lock_guard const lock(mutex);
      return answer(x);
    });
  }

  py::tuple bounds(std::string const& name, py::handle number, py::handle digits) {
    auto const& function = function_named(name);
    unsigned const count = to_count(digits, "digits");
    auto const input = [&] { return described(name, number, count); };
    auto [lower, upper] = ask(input, number, [&](QNumber const& x) {
      if (!function.is_kept(series, x, count)) {
        check_digits(count);
        check_demand(function.demand({.function = nullptr, .numbers = {x}, .digits = count}, 0));
      }
      return function.bounds(series, x, count);
    });
    if (upper < lower) swap(lower, upper);  // as the companions at negative points are
    return to_pair({std::move(lower), std::move(upper)});
  }

  py::list terms(py::handle number, py::handle count) {
    py::list all;
    for (auto const& term : expansion(number, count)) all.append(to_int(term.numerator()));
    return all;
  }

  py::list convergents(py::handle number, py::handle count) {
    auto values = na::convergents(expansion(number, count));
    if (values.empty()) values.emplace_back(0);  // zero has no terms
    py::list all;
    for (auto const& value : values) all.append(to_fraction(value));
    return all;
  }

  py::object approx(py::handle number, py::handle terms, int direction) {
    unsigned const count = to_count(terms, "terms");
    return to_fraction(ask([&] { return shown(number); }, number,
                           [&](QNumber const& x) {
                             if (count == 0 && !x.is_integer())
                               throw std::domain_error("no terms leave no convergent");
                             check_demand(cli::demand_of_approx(
                                 {.function = nullptr, .numbers = {x}, .terms = count}, 0));
                             return rational.approx(x, count, direction);
                           }));
  }

 private:
  std::vector<QNumber> expansion(py::handle number, py::handle most) {
    unsigned const count = most.is_none() ? UINT_MAX : to_count(most, "count");
    return ask(
        [&] { return shown(number); }, number,
        [&](QNumber const& x) {
          check_demand(cli::demand_of_cf({.function = nullptr, .numbers = {x}, .terms = count}, 0));
          auto all = rational.get_cf(x, count).terms;
          if (all.size() > count) all.erase(all.begin() + count, all.end());
          return all;
        });
  }

  na::RationalApproximator rational;
  Series series{rational};
  std::mutex mutex;
};

/// That the bounds of a solver, which are found once more, hold what they are bounds of.
std::string certify(std::string const& name, py::handle number, py::handle digits, py::handle lower,
                    py::handle upper) {
  auto const& function = function_named(name);
  if (function.certify == nullptr)
    throw py::value_error("there are no certificates of companion bounds");
  unsigned const count = to_count(digits, "digits");
  auto const input = [&] { return described(name, number, count); };
  return compute(input, [&, x = to_number(number), low = to_number(lower),
                         high = to_number(upper)] {
    na::RationalApproximator rational;
    Series series(rational);
    if (function.bounds(series, x, count) != Bounds(low, high))
      throw std::domain_error("no certificate, since these bounds are not those found now");
    return certify::to_json_lines(function.certify(series, x, count, real::Interval(low, high)));
  });
}

}  // namespace

void define_solver(py::module_& module) {
  py::class_<Solver>(module, "Solver")
      .def(py::init<>())
      .def("bounds", &Solver::bounds)
      .def("terms", &Solver::terms)
      .def("convergents", &Solver::convergents)
      .def("approx", &Solver::approx);
  module.def("certify", &certify);
}

}  // namespace zelk::python
