#include "python/src/solver.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "cli/demand.h"
#include "cli/query.h"
#include "python/src/arguments.h"
#include "python/src/ask.h"
#include "python/src/compute.h"
#include "python/src/convert.h"
#include "python/src/limits.h"
#include "zelk/approx/convergents.h"
#include "zelk/approx/cosine.h"
#include "zelk/approx/power_series_approximator.h"
#include "zelk/approx/rational_approximator.h"
#include "zelk/certify/prove.h"
#include "zelk/certify/write.h"
#include "zelk/work/poll.h"

namespace zelk::python {
namespace {

using Series = na::PowerSeriesApproximator;
using Bounds = Series::Bounds;

/// All that is known here of one kind of bounds.
struct Function {
  std::string_view name;
  cli::Demand (&demand)(cli::Query const& query);
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
  /// The turn of a thread to ask. Those that wait for it can be stopped.
  class Turn {
   public:
    explicit Turn(Solver& its_solver) : solver(its_solver) {
      if (solver.asker == std::this_thread::get_id())
        throw std::logic_error("the solver is answering a question of this thread");
      while (!solver.mutex.try_lock_for(std::chrono::milliseconds(20))) {
        if (solver.process != getpid())
          throw std::logic_error("the process was forked while the solver was answering");
        work::poll(0);
      }
      solver.asker = std::this_thread::get_id();
      solver.process = getpid();
    }
    Turn(Turn const&) = delete;
    Turn& operator=(Turn const&) = delete;
    ~Turn() {
      solver.asker = std::thread::id();
      solver.mutex.unlock();
    }

   private:
    Solver& solver;
  };

  /// Whether the limits have been held against the question before.
  static bool is_never_kept(QNumber const&) { return false; }

  /// The answer of an approximator to a query about one number, as by the `ask` of questions that
  /// nothing is kept of.
  template <class Input, class Estimate, class IsKept, class Answer>
  auto ask(Input const& input, cli::Query const& query, Estimate const& estimate,
           IsKept const& is_kept, Answer const& answer) {
    return compute(input, [&] {
      Turn const turn(*this);
      QNumber const& x = query.numbers[0];
      if (!is_kept(x)) require_limits(query, estimate);
      return answer(x);
    });
  }

  /// What `make` makes of the first terms of a continued fraction.
  template <class Estimate, class Make>
  std::vector<QNumber> expansion(py::handle number, py::handle most, Estimate const& estimate,
                                 Make const& make) {
    unsigned const count = most.is_none() ? UINT_MAX : to_count(most, "count");
    return ask([&] { return shown(number); },
               {.function = nullptr, .numbers = {to_number(number)}, .terms = count}, estimate,
               is_never_kept,
               [&](QNumber const& x) {
                 auto all = rational.get_cf(x, count).terms;
                 if (all.size() > count) all.erase(all.begin() + count, all.end());
                 return make(all);
               });
  }

 public:
  py::tuple bounds(std::string const& name, py::handle number, py::handle digits) {
    auto const& function = function_named(name);
    unsigned const count = to_count(digits, "digits");
    auto [lower, upper] =
        ask([&] { return described(name, number, count); },
            {.function = nullptr, .numbers = {to_number(number)}, .digits = count}, function.demand,
            [&](QNumber const& x) { return function.is_kept(series, x, count); },
            [&](QNumber const& x) { return function.bounds(series, x, count); });
    if (upper < lower) swap(lower, upper);  // as the companions at negative points are
    return to_pair({std::move(lower), std::move(upper)});
  }

  py::list terms(py::handle number, py::handle count) {
    py::list all;
    for (auto const& term : expansion(number, count, cli::demand_of_cf, std::identity()))
      all.append(to_int(term.numerator()));
    return all;
  }

  py::list convergents(py::handle number, py::handle count) {
    auto values = expansion(number, count, cli::demand_of_convergents, na::convergents);
    if (values.empty()) values.emplace_back(0);  // zero has no terms
    py::list all;
    for (auto const& value : values) all.append(to_fraction(value));
    return all;
  }

  py::object approx(py::handle number, py::handle terms, int direction) {
    unsigned const count = to_count(terms, "terms");
    return to_fraction(ask([&] { return shown(number); },
                           {.function = nullptr, .numbers = {to_number(number)}, .terms = count},
                           cli::demand_of_approx, is_never_kept,
                           [&](QNumber const& x) {
                             if (count == 0 && !x.is_integer())
                               throw std::domain_error("no terms leave no convergent");
                             return rational.approx(x, count, direction);
                           }));
  }

 private:
  na::RationalApproximator rational;
  Series series{rational};
  std::timed_mutex mutex;
  std::atomic<std::thread::id> asker;
  std::atomic<pid_t> process = getpid();  // that of the last one asked, or of its making
};

/// That the bounds of a solver, which are found once more, hold what they are bounds of.
std::string certify(std::string const& name, py::handle number, py::handle digits, py::handle lower,
                    py::handle upper) {
  auto const& function = function_named(name);
  if (function.certify == nullptr)
    throw py::value_error("there are no certificates of companion bounds");
  unsigned const count = to_count(digits, "digits");
  cli::Query const query{.function = nullptr, .numbers = {to_number(number)}, .digits = count};
  real::Interval const found(to_number(lower), to_number(upper));
  return ask(
      [&] { return described(name, number, count); }, query, function.demand,
      [&] {
        QNumber const& x = query.numbers[0];
        na::RationalApproximator rational;
        Series series(rational);
        if (function.bounds(series, x, count) != Bounds(found.lower(), found.upper()))
          throw std::domain_error("no certificate, since these bounds are not those found now");
        return certify::to_json_lines(function.certify(series, x, count, found));
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
