#include "python/src/questions.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/demand.h"
#include "cli/query.h"
#include "python/src/arguments.h"
#include "python/src/compute.h"
#include "python/src/convert.h"
#include "python/src/limits.h"
#include "zelk/approx/best.h"
#include "zelk/approx/convergents.h"
#include "zelk/approx/simplest.h"
#include "zelk/certify/prove.h"
#include "zelk/certify/statement.h"
#include "zelk/certify/write.h"
#include "zelk/convert/decimal.h"
#include "zelk/real/enclose.h"
#include "zelk/real/parse.h"
#include "zelk/verify/read.h"
#include "zelk/verify/verify.h"

namespace zelk::python {
namespace {

constexpr char undecided[] = "not decided by 10000 digits, or not the same for all of an interval";
static_assert(real::default_most_digits == 10000);

/// A function of one interval, with its proof.
struct Image {
  real::Kind kind;
  real::Interval (real::ElementaryFunctions::*find)(real::Interval const& x, real::Accuracy);
  certify::Proof (*prove)(real::ElementaryFunctions&, real::Interval const& x, real::Accuracy);
};

constexpr Image images[] = {
    {real::Kind::exp, &real::ElementaryFunctions::exp, certify::prove_exp},
    {real::Kind::log, &real::ElementaryFunctions::log, certify::prove_log},
    {real::Kind::sin, &real::ElementaryFunctions::sin, certify::prove_sin},
    {real::Kind::cos, &real::ElementaryFunctions::cos, certify::prove_cos},
    {real::Kind::atan, &real::ElementaryFunctions::atan, certify::prove_atan},
};

/// A formula at a number, an interval or an expression, and how near its bounds are to be.
struct Question {
  Question(py::handle text, py::handle point, py::handle digit_count, bool is_relative)
      : formula(text),
        x(point),
        digits(to_count(digit_count, "digits")),
        accuracy(is_relative ? real::Accuracy::relative(digits) : real::Accuracy::absolute(digits)),
        expression(real::parse_expression(text_of(text))) {
    if (!x.is_none()) expression = composed(expression, to_expression(x));
    auto const& postfix = expression.postfix();
    if (postfix.size() == 2 && postfix[0] == real::Kind::number) {
      auto const* const row = std::ranges::find(images, postfix[1], &Image::kind);
      if (row != std::end(images)) image = row;
    }
  }

  std::string shown() const {
    return python::shown(formula) + (x.is_none() ? "" : " at x = " + python::shown(x));
  }

  /// Throws: std::length_error.
  void check() const {
    check_digits(digits);
    cli::Query query{.function = nullptr};
    query.expressions = {expression};
    query.digits = digits;
    check_demand(cli::demand_of_expression(query, 0));
  }

  /// Whether it needs no more than some 2000 digits of pi and log 2.
  bool is_usual() const {
    constexpr unsigned most_digits = 1000;
    QNumber const most = 1000;
    return image != nullptr && digits <= most_digits &&
           std::ranges::all_of(expression.numbers(), [&](real::Interval const& ends) {
             return !ends.lower().is_big() && !ends.upper().is_big() && -most <= ends.lower() &&
                    ends.upper() <= most;
           });
  }

  py::handle formula;
  py::handle x;
  unsigned digits;
  real::Accuracy accuracy;
  real::Expression expression;
  Image const* image = nullptr;  // if it is one function of a number or an interval
};

/// What `answer` finds by functions that have kept nothing, or nothing but the first digits of pi
/// and log 2; answers do not depend on that.
template <class Answer>
auto ask(Question const& question, Answer const& answer) {
  return compute([&] { return question.shown(); },
                 [&] {
                   question.check();
                   double const max_bits = Limits::get().max_bits;
                   if (!question.is_usual()) {
                     real::ElementaryFunctions functions(max_bits);
                     return answer(functions);
                   }
                   thread_local std::optional<real::ElementaryFunctions> usual;
                   if (!usual || usual->max_bits() != max_bits) usual.emplace(max_bits);
                   return answer(*usual);
                 });
}

py::tuple enclose(py::handle formula, py::handle x, py::handle digits, bool is_relative) {
  Question const question(formula, x, digits, is_relative);
  auto const [bounds, is_narrow] = ask(question, [&](real::ElementaryFunctions& functions) {
    if (question.image == nullptr)
      return real::enclose(functions, question.expression, question.accuracy);
    auto const find = question.image->find;
    return real::Enclosure{(functions.*find)(question.expression.numbers()[0], question.accuracy),
                           true};
  });
  // Over intervals that is how it has to be.
  if (!is_narrow && std::ranges::all_of(question.expression.numbers(), &real::Interval::is_point) &&
      PyErr_WarnEx(PyExc_RuntimeWarning,
                   (question.shown() + ": the bounds are farther apart than asked for").c_str(),
                   2) < 0)
    throw py::error_already_set();
  return to_pair({bounds.lower(), bounds.upper()});
}

/// That the bounds of a question, which is asked once more, hold its value.
std::string prove(py::handle formula, py::handle x, py::handle digits, bool is_relative,
                  py::handle lower, py::handle upper) {
  Question const question(formula, x, digits, is_relative);
  QNumber const low = to_number(lower), high = to_number(upper);
  return ask(question, [&](real::ElementaryFunctions& functions) {
    auto const proof =
        question.image != nullptr
            ? question.image->prove(functions, question.expression.numbers()[0], question.accuracy)
            : certify::prove(functions, question.expression, question.accuracy);
    auto const& bounds = proof.answer.bounds;
    if (bounds.lower() != low || bounds.upper() != high)
      throw std::domain_error("no certificate, since these bounds are not those found now");
    return certify::to_json_lines(proof.certificate);
  });
}

/// A statement as it is spelled of what is typed, where fractions are quotients; given as numbers
/// they are numbers.
std::string as_typed(std::string const& statement) {
  return certify::statement_of(real::parse_expression(statement));
}

/// The statement of the certificate if it means the expression, otherwise that of the expression.
std::string wanted_statement(real::Expression const& expression,
                             verify::Certificate const& certificate) {
  auto const wanted = as_typed(certify::statement_of(expression));
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

/// As `compute`, but of machine words that are answered sooner than another thread could go on.
template <class Input, class Compute>
QNumber compute_quickly(QNumber const& a, QNumber const& b, Input const& input,
                        Compute const& answer) {
  if (a.is_big() || b.is_big()) return compute(input, answer);
  try {
    return answer();
  } catch (std::domain_error const& error) {
    raise(PyExc_ValueError, input(), error.what());
  }
}

py::object simplest(py::handle lower, py::handle upper, bool is_open) {
  QNumber const low = to_number(lower), high = to_number(upper);
  return to_fraction(compute_quickly(
      low, high, [&] { return "simplest(" + shown(lower) + ", " + shown(upper) + ')'; },
      [&] {
        return na::simplest_between(low, high, is_open ? na::Ends::open : na::Ends::closed);
      }));
}

/// Requires: `side` is one of the three.
template <class Below, class Nearest, class Above>
auto* on_side(int side, Below* below, Nearest* nearest, Above* above) {
  return side < 0 ? below : side > 0 ? above : nearest;
}

py::object best(py::handle x, py::handle limit, int side) {
  auto const most = to_number(limit);
  auto const input = [&] { return "best(" + shown(x) + ", " + shown(limit) + ')'; };
  if (!PyUnicode_Check(x.ptr()) && !PyTuple_Check(x.ptr())) {
    auto* const find = on_side(side, na::best_below, na::best_nearest, na::best_above);
    auto const q = to_number(x);
    return to_fraction(compute_quickly(q, most, input, [&] { return find(q, most); }));
  }
  auto* const find = on_side(side, real::best_below, real::best_nearest, real::best_above);
  auto const expression = to_expression(x);
  return to_fraction(compute(input, [&] {
    real::ElementaryFunctions functions(Limits::get().max_bits);
    auto found = find(functions, expression, most, real::default_most_digits);
    if (!found) throw std::domain_error(undecided);
    return *std::move(found);
  }));
}

/// The partial quotients of a value, floors, as many as are asked for.
std::vector<QNumber> certain_terms(real::Expression const& expression,
                                   std::optional<unsigned> count) {
  real::ElementaryFunctions functions(Limits::get().max_bits);
  if (auto const bounds = real::enclose(functions, expression, 0).bounds; bounds.is_point()) {
    auto all = na::common_terms(bounds.lower(), bounds.upper());
    if (count && all.size() > *count) all.erase(all.begin() + *count, all.end());
    return all;
  }
  if (!count) throw std::domain_error("not known to be rational: count must say how many terms");
  cli::Query query{.function = nullptr};
  query.expressions = {expression};
  query.terms = *count;
  check_demand(cli::demand_of_cf(query, 0));
  auto [terms, is_whole] = real::terms(functions, expression, *count);
  if (terms.size() < *count && !is_whole)
    throw std::domain_error("only the first " + std::to_string(terms.size()) +
                            " terms are certain");
  return std::move(terms);
}

std::optional<unsigned> to_optional_count(py::handle count) {
  if (count.is_none()) return std::nullopt;
  return to_count(count, "count");
}

py::list terms(py::handle x, py::handle count) {
  auto const expression = to_expression(x);
  py::list all;
  for (auto const& term :
       compute([&] { return shown(x); },
               [&, most = to_optional_count(count)] { return certain_terms(expression, most); }))
    all.append(to_int(term.numerator()));
  return all;
}

py::list convergents(py::handle x, py::handle count) {
  auto const expression = to_expression(x);
  py::list all;
  for (auto const& convergent : compute([&] { return shown(x); },
                                        [&, most = to_optional_count(count)] {
                                          return na::convergents(certain_terms(expression, most));
                                        }))
    all.append(to_fraction(convergent));
  return all;
}

std::string decimal(py::handle lower, py::handle upper, py::handle places) {
  unsigned const count = to_count(places, "places");
  return compute([] { return std::string("decimal"); },
                 [&, low = to_number(lower), high = to_number(upper)] {
                   check_demand({32.0 * count, 32.0 * count});
                   return convert::to_decimal({low, high}, count);
                 });
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
  module.def("decimal", &decimal);
  module.def("to_rational", [](py::handle x) { return to_fraction(to_number(x)); });
  module.def("count", [](py::handle object, char const* name) { return to_count(object, name); });
  module.def("text", [](py::handle x) { return shown(x); });
}

}  // namespace zelk::python
