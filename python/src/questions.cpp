#include "python/src/questions.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/demand.h"
#include "cli/query.h"
#include "python/src/arguments.h"
#include "python/src/ask.h"
#include "python/src/compute.h"
#include "python/src/convert.h"
#include "python/src/limits.h"
#include "zelk/approx/best.h"
#include "zelk/approx/convergents.h"
#include "zelk/approx/simplest.h"
#include "zelk/certify/prove.h"
#include "zelk/certify/statement.h"
#include "zelk/certify/write.h"
#include "zelk/real/enclose.h"
#include "zelk/real/parse.h"
#include "zelk/verify/read.h"
#include "zelk/verify/verify.h"

namespace zelk::python {
namespace {

constexpr char undecided[] = "not decided by 10000 digits, or not the same for all of an interval";
static_assert(real::default_most_digits == 10000);

/// What needs no more digits of pi and log 2 than its answer has and its argument is long.
constexpr real::Kind plain_functions[] = {real::Kind::exp, real::Kind::log, real::Kind::sin,
                                          real::Kind::cos, real::Kind::atan};

real::Expression parse(std::string_view text) {
  return read_text(text, [&] { return real::parse_expression(text); });
}

/// A formula at a number, an interval or an expression, and how near its bounds are to be.
struct Question {
  Question(py::handle text, py::handle point, py::handle digit_count, bool is_relative)
      : formula(text),
        x(point),
        query{.function = nullptr,
              .expressions = {parse(text_of(text))},
              .digits = to_count(digit_count, "digits"),
              .relative = is_relative ? 1 : 0} {
    if (!x.is_none()) query.expressions[0] = composed(expression(), to_expression(x));
  }

  real::Expression const& expression() const { return query.expressions[0]; }

  real::Accuracy accuracy() const {
    return query.relative != 0 ? real::Accuracy::relative(*query.digits)
                               : real::Accuracy::absolute(*query.digits);
  }

  std::string shown() const {
    return python::shown(formula) + (x.is_none() ? "" : " at x = " + python::shown(x));
  }

  /// Whether it is one function of a number or an interval, and needs no more than some 2000 digits
  /// of pi and log 2.
  bool is_usual() const {
    constexpr unsigned most_digits = 1000;
    QNumber const most = 1000;
    auto const& postfix = expression().postfix();
    if (postfix.size() != 2 || postfix[0] != real::Kind::number || *query.digits > most_digits ||
        std::ranges::find(plain_functions, postfix[1]) == std::end(plain_functions))
      return false;
    auto const& point = expression().numbers()[0];
    return !point.lower().is_big() && !point.upper().is_big() && -most <= point.lower() &&
           point.upper() <= most;
  }

  py::handle formula;
  py::handle x;
  cli::Query query;
};

/// What `answer` finds by functions that have kept nothing, or nothing but the first digits of pi
/// and log 2; answers do not depend on that.
template <class Answer>
auto ask_functions(Question const& question, Answer const& answer) {
  return ask([&] { return question.shown(); }, question.query, cli::demand_of_expression,
             [&] {
               // What is usual and within the limits is far from all that functions may be limited
               // to. None is here while it is in use: a handler of a signal may ask, too.
               thread_local std::unique_ptr<real::ElementaryFunctions> usual;
               if (question.is_usual()) {
                 auto functions = std::move(usual);
                 if (!functions) functions = std::make_unique<real::ElementaryFunctions>();
                 auto found = answer(*functions);
                 usual = std::move(functions);
                 return found;
               }
               real::ElementaryFunctions functions(Limits::get().max_bits);
               return answer(functions);
             });
}

py::tuple enclose(py::handle formula, py::handle x, py::handle digits, bool is_relative) {
  Question const question(formula, x, digits, is_relative);
  auto const [bounds, is_narrow] =
      ask_functions(question, [&](real::ElementaryFunctions& functions) {
        return real::enclose(functions, question.expression(), question.accuracy());
      });
  // Over intervals that is how it has to be.
  if (!is_narrow &&
      std::ranges::all_of(question.expression().numbers(), &real::Interval::is_point) &&
      PyErr_WarnEx(PyExc_RuntimeWarning,
                   (question.shown() + ": the bounds are farther apart than asked for").c_str(),
                   3) < 0)  // where it was asked
    throw py::error_already_set();
  return to_pair({bounds.lower(), bounds.upper()});
}

/// That the bounds of a question, which is asked once more, hold its value.
std::string prove(py::handle formula, py::handle x, py::handle digits, bool is_relative,
                  py::handle lower, py::handle upper) {
  Question const question(formula, x, digits, is_relative);
  QNumber const low = to_number(lower), high = to_number(upper);
  return ask_functions(question, [&](real::ElementaryFunctions& functions) {
    auto const proof = certify::prove(functions, question.expression(), question.accuracy());
    auto const& bounds = proof.answer.bounds;
    if (bounds.lower() != low || bounds.upper() != high)
      throw std::domain_error("no certificate, since these bounds are not those found now");
    return certify::to_json_lines(proof.certificate);
  });
}

/// The same with numbers in the place of quotients and negatives of numbers: as text a fraction is
/// a quotient, and what is negative the opposite of something.
real::Expression with_numbers(real::Expression const& expression) {
  using real::Kind;
  std::vector<Kind> kinds;
  std::vector<real::Interval> numbers;
  auto next = expression.numbers().begin();
  auto const is_number = [&](std::size_t from_last) {
    return kinds.size() > from_last &&
           kinds.end()[-1 - static_cast<long>(from_last)] == Kind::number &&
           numbers.end()[-1 - static_cast<long>(from_last)].is_point();
  };
  for (Kind const kind : expression.postfix()) {
    if (kind == Kind::negative && is_number(0)) {
      numbers.back() = -numbers.back();
    } else if (kind == Kind::quotient && is_number(0) && is_number(1) && numbers.back() != 0) {
      auto const divisor = numbers.back();
      numbers.pop_back();
      kinds.pop_back();
      numbers.back() = numbers.back() / divisor;
    } else {
      if (kind == Kind::number) numbers.push_back(*next++);
      kinds.push_back(kind);
    }
  }
  return real::Expression::from_postfix(std::move(kinds), std::move(numbers));
}

/// A statement in the spelling that all ways to type it have in common.
std::string as_typed(std::string const& statement) {
  return certify::statement_of(with_numbers(real::parse_expression(statement)));
}

/// The statement of the certificate if it means the expression, otherwise that of the expression.
std::string wanted_statement(real::Expression const& expression,
                             verify::Certificate const& certificate) {
  auto wanted = as_typed(certify::statement_of(expression));
  try {
    if (as_typed(certificate.statement) == wanted) return certificate.statement;
  } catch (std::invalid_argument const&) {  // it is no expression
  }
  return wanted;
}

std::string check(py::handle certificate, py::handle expression, py::handle digits,
                  bool is_relative) {
  auto const text = text_of(certificate);
  verify::Question asked{.is_relative = is_relative};
  if (!digits.is_none()) asked.digits = to_count(digits, "digits");
  std::optional<real::Expression> subject;
  if (!expression.is_none()) subject = to_expression(expression);
  auto const verdict = compute([] { return std::string("certificate"); },
                               [&] {
                                 auto const given = verify::read_certificate(text);
                                 if (subject) asked.statement = wanted_statement(*subject, given);
                                 return verify::verify(given, {}, asked);
                               });
  if (!verdict.is_accepted)
    throw py::value_error("rejected: claim " + std::to_string(verdict.claim) + ": " +
                          verdict.reason);
  return verdict.statement;
}

/// As `ask`, but of two numbers, and of machine words without letting go of the interpreter: they
/// are answered sooner than another thread could go on.
template <class Input, class Find>
py::object ask_quickly(Input const& input, QNumber const& a, QNumber const& b, Find const& find) {
  cli::Query const query{.function = nullptr, .numbers = {a, b}};
  auto const answer = [&] { return find(a, b); };
  if (!a.is_big() && !b.is_big()) try {
      require_limits(query, cli::demand_of_simplest);
      return to_fraction(answer());
    } catch (std::logic_error const&) {  // is told in the other way
    }
  return to_fraction(ask(input, query, cli::demand_of_simplest, answer));
}

py::object simplest(py::handle lower, py::handle upper, bool is_open) {
  return ask_quickly([&] { return "simplest(" + shown(lower) + ", " + shown(upper) + ')'; },
                     to_number(lower), to_number(upper),
                     [&](QNumber const& low, QNumber const& high) {
                       return na::simplest_between(low, high,
                                                   is_open ? na::Ends::open : na::Ends::closed);
                     });
}

/// Requires: `side` is one of the three.
template <class Below, class Nearest, class Above>
auto* on_side(int side, Below* below, Nearest* nearest, Above* above) {
  return side < 0 ? below : side > 0 ? above : nearest;
}

py::object best(py::handle x, py::handle limit, int side) {
  auto const most = to_number(limit);
  auto const input = [&] { return "best(" + shown(x) + ", " + shown(limit) + ')'; };
  if (!PyUnicode_Check(x.ptr()) && !is_pair(x))
    return ask_quickly(input, to_number(x), most,
                       on_side(side, na::best_below, na::best_nearest, na::best_above));
  auto* const find = on_side(side, real::best_below, real::best_nearest, real::best_above);
  cli::Query query{.function = nullptr, .numbers = {most}};
  query.expressions = {to_expression(x)};
  return to_fraction(ask(input, query, cli::demand_of_simplest, [&] {
    real::ElementaryFunctions functions(Limits::get().max_bits);
    auto found = find(functions, query.expressions[0], most, real::default_most_digits);
    if (!found) throw std::domain_error(undecided);
    return *std::move(found);
  }));
}

using Numbers = std::vector<QNumber>;

/// What `make` makes of the partial quotients of a value, floors, as many as are asked for, or all
/// of a number. That takes what `estimate` says.
template <class Estimate, class Make>
Numbers expansion(py::handle x, py::handle count, Estimate const& estimate, Make const& make) {
  auto const expression = to_expression(x);
  cli::Query query{.function = nullptr};
  if (!count.is_none()) query.terms = to_count(count, "count");
  auto const& constants = expression.numbers();
  if (expression.postfix().size() == 1 && constants.size() == 1 && constants[0].is_point())
    query.numbers = {constants[0].lower()};
  else
    query.expressions = {expression};

  auto const certain_terms = [&] {
    if (query.numbers.empty()) {
      real::ElementaryFunctions functions(Limits::get().max_bits);
      auto const value = real::enclose(functions, expression, 0).bounds;
      if (!value.is_point()) {
        if (count.is_none())
          throw std::domain_error("not known to be rational: count must say how many terms");
        auto [terms, is_whole] = real::terms(functions, expression, query.terms);
        if (terms.size() < query.terms && !is_whole)
          throw std::domain_error("only the first " + std::to_string(terms.size()) +
                                  " terms are certain");
        return std::move(terms);
      }
      query.expressions.clear();
      query.numbers = {value.lower()};
      require_limits(query, estimate);
    }
    auto all = na::common_terms(query.numbers[0], query.numbers[0]);
    if (all.size() > query.terms) all.erase(all.begin() + query.terms, all.end());
    return all;
  };
  return ask([&] { return shown(x); }, query, estimate, [&] { return make(certain_terms()); });
}

py::list terms(py::handle x, py::handle count) {
  py::list all;
  for (auto const& term : expansion(x, count, cli::demand_of_cf, std::identity()))
    all.append(to_int(term.numerator()));
  return all;
}

py::list convergents(py::handle x, py::handle count) {
  py::list all;
  for (auto const& value : expansion(x, count, cli::demand_of_convergents, na::convergents))
    all.append(to_fraction(value));
  return all;
}

}  // namespace

void define_questions(py::module_& module) {
  module.def("enclose", &enclose);
  module.def("prove", &prove);
  module.def("check", &check);
  module.def("simplest", &simplest);
  module.def("best", &best);
  module.def("terms", &terms);
  module.def("convergents", &convergents);
  module.def("count", [](py::handle object, char const* name) { return to_count(object, name); });
  module.def("text", [](py::handle x) { return shown(x); });
}

}  // namespace zelk::python
