#include "cli/functions.h"

#include <algorithm>
#include <climits>
#include <compare>
#include <optional>
#include <stdexcept>
#include <utility>

#include "zelk/approx/best.h"
#include "zelk/approx/convergents.h"
#include "zelk/approx/cosine.h"
#include "zelk/approx/short_bounds.h"
#include "zelk/approx/simplest.h"
#include "zelk/certify/coq.h"
#include "zelk/certify/statement.h"
#include "zelk/convert/decimal.h"
#include "zelk/convert/text.h"
#include "zelk/real/enclose.h"

namespace zelk::cli {
namespace {

using Series = na::PowerSeriesApproximator;

[[noreturn]] void refuse(Query const& query, Word const& word, std::string const& reason) {
  std::string text = query.function->name;
  for (auto const& each : query.words)
    if (each) text += ' ' + std::string(each->text);
  throw Refusal(Refusal::Kind::unanswerable, word.column, reason, text + ": " + reason);
}

/// The number in question, and who is asked about it. Of a number in big form all terms are floors.
/// The tables find a number by its value, so those of the other form are kept apart.
struct Subject {
  Subject(Query const& query, Approximators& approximators)
      : number(query.floor != 0 ? QNumber::big_from_mpz(query.numbers[0].numerator(),
                                                        query.numbers[0].denominator())
                                : query.numbers[0]),
        approximator(query.floor != 0 ? approximators.floored : approximators.rational) {}

  Terms terms(unsigned most) const {
    auto all = approximator.get_cf(number, most).terms;
    if (all.size() > most) all.erase(all.begin() + most, all.end());
    return all;
  }

  QNumber number;
  na::RationalApproximator& approximator;
};

Convergent beside(QNumber const& value, QNumber const& q) {
  return {value, value < q ? "<" : value == q ? "=" : ">", abs(value - q)};
}

/// Where the library gives up to tell.
[[noreturn]] void refuse_undecided(Query const& query) {
  auto const has_interval = [](real::Expression const& expression) {
    return !std::ranges::all_of(expression.numbers(), &real::Interval::is_point);
  };
  static_assert(real::default_most_digits == 10000);
  std::string reason = "not decided by 10000 digits";
  if (std::ranges::any_of(query.expressions, has_interval))
    reason += ", or not the same for all of an interval";
  refuse(query, *query.words[0], reason);
}

/// What `find` makes of expressions. What they do not define becomes a refusal.
template <class Find>
Answer certainly(Query const& query, Find const& find) {
  try {
    return find();
  } catch (std::domain_error const& error) {
    refuse(query, *query.words[0], error.what());
  } catch (std::length_error const& error) {
    refuse(query, *query.words[0], error.what());
  } catch (std::invalid_argument const& error) {
    refuse(query, *query.words[0], error.what());
  }
}

/// Beside a value that is not known to be rational. The distance is rounded up, to three digits, or
/// to so many that the decimals to be printed are its own; over an interval it has none.
Convergent beside(Query const& query, QNumber const& value, Approximators& approximators) {
  auto const difference = real::Expression(value) - query.expressions[0];
  auto found = real::enclose(approximators.functions, difference, real::Accuracy::relative(3));
  int const sign = found.bounds.sign();
  if (!found.is_narrow) refuse_undecided(query);
  auto const shows_its_own = [&] {
    auto const decimal = [&](QNumber const& q) {
      return convert::to_decimal(q, *query.places, convert::Rounding::nearest);
    };
    return !query.places || decimal(found.bounds.lower()) == decimal(found.bounds.upper());
  };
  for (unsigned more = 2; found.is_narrow && !shows_its_own(); more *= 2) {
    if (more > real::default_most_digits) refuse_undecided(query);
    found = real::enclose(approximators.functions, difference,
                          real::Accuracy::absolute(*query.places + more));
  }
  return {value,
          sign < 0   ? "<"
          : sign > 0 ? ">"
                     : "=",
          std::max(-found.bounds.lower(), found.bounds.upper())};
}

/// The same query of the value of its expression, where that is known to be rational.
std::optional<Query> of_rational(Query const& query, Approximators& approximators) {
  auto const bounds = real::enclose(approximators.functions, query.expressions[0], 0).bounds;
  if (!bounds.is_point()) return std::nullopt;
  Query rational = query;
  rational.expressions.clear();
  rational.numbers.insert(rational.numbers.begin(), bounds.lower());
  return rational;
}

/// Requires: the value of the expression is not known to be rational.
Terms certain_terms(Query const& query, Approximators& approximators) {
  if (query.terms == UINT_MAX)
    refuse(query, *query.words[0], "not known to be rational: --terms must say how many");
  auto [terms, is_whole] = real::terms(approximators.functions, query.expressions[0], query.terms);
  if (terms.size() < query.terms && !is_whole) {
    std::string certain;
    for (auto const& term : terms)
      certain += (certain.empty()      ? ""
                  : &term == &terms[1] ? "; "
                                       : ", ") +
                 convert::to_string(term);
    refuse(query, *query.words[0],
           certain.empty() ? "no term is certain"
                           : "no more terms are certain than [" + certain + "]");
  }
  return std::move(terms);
}

Answer cf(Query const& query, Approximators& approximators) {
  if (!query.expressions.empty())
    return certainly(query, [&]() -> Answer {
      auto const rational = of_rational(query, approximators);
      return rational ? cf(*rational, approximators) : certain_terms(query, approximators);
    });
  return Subject(query, approximators).terms(query.terms);
}

Answer approx(Query const& query, Approximators& approximators) {
  Subject const subject(query, approximators);
  if (query.terms == 0 && !subject.number.is_integer())
    refuse(query, *query.words[1], "no terms leave no convergent");
  return subject.approximator.approx(subject.number, query.terms, query.direction);
}

Answer convergents(Query const& query, Approximators& approximators) {
  if (!query.expressions.empty())
    return certainly(query, [&]() -> Answer {
      auto const rational = of_rational(query, approximators);
      if (rational) return convergents(*rational, approximators);
      std::vector<Convergent> all;
      for (auto const& c : na::convergents(certain_terms(query, approximators)))
        all.push_back(beside(query, c, approximators));
      return all;
    });
  Subject const subject(query, approximators);
  std::vector<Convergent> all;
  for (QNumber const& c : na::convergents(subject.terms(query.terms)))
    all.push_back(beside(c, subject.number));
  if (all.empty()) all.push_back(beside(subject.number, subject.number));  // zero has no terms
  return all;
}

Answer simplest(Query const& query, Approximators&) {
  auto const &lower = query.numbers[0], &upper = query.numbers[1];
  if (lower > upper) refuse(query, *query.words[1], "no number lies between, since B is below A");
  if (query.open != 0 && lower == upper)
    refuse(query, *query.words[1], "no number lies between, since B is A");
  return na::simplest_between(lower, upper, query.open != 0 ? na::Ends::open : na::Ends::closed);
}

Answer best(Query const& query, Approximators& approximators) {
  if (!query.expressions.empty())
    return certainly(query, [&]() -> Answer {
      auto const rational = of_rational(query, approximators);
      if (rational) return best(*rational, approximators);
      auto const find = query.direction < 0   ? real::best_below
                        : query.direction > 0 ? real::best_above
                                              : real::best_nearest;
      auto const found = find(approximators.functions, query.expressions[0], query.numbers[0],
                              real::default_most_digits);
      if (!found) refuse_undecided(query);
      return Best{beside(query, *found, approximators)};
    });
  auto const find = query.direction < 0   ? na::best_below
                    : query.direction > 0 ? na::best_above
                                          : na::best_nearest;
  auto const &q = query.numbers[0], &limit = query.numbers[1];
  return Best{beside(find(q, limit), q)};
}

using SeriesBounds = Bounds (Series::*)(QNumber const& x, unsigned prec);
using FreeBounds = Bounds (&)(Series& series, QNumber const& x, unsigned prec);

Answer short_bounds(FreeBounds bounds, Query const& query, Approximators& approximators) {
  if (*query.digits == UINT_MAX)
    refuse(query, *query.words[1], "too many digits, since short bounds take one more");
  return bounds(approximators.series, query.numbers[0], *query.digits);
}

Answer exp(Query const& query, Approximators& approximators) {
  if (query.kind == Query::shortened)
    return short_bounds(na::short_exp_bounds, query, approximators);
  SeriesBounds const bounds = query.kind == Query::derivative ? &Series::maclaurin_exp_der_bounds
                                                              : &Series::maclaurin_exp_bounds;
  return (approximators.series.*bounds)(query.numbers[0], *query.digits);
}

Answer sin(Query const& query, Approximators& approximators) {
  if (query.kind == Query::shortened)
    return short_bounds(na::short_sin_bounds, query, approximators);
  SeriesBounds const bounds = query.kind == Query::derivative ? &Series::maclaurin_sin_der_bounds
                                                              : &Series::maclaurin_sin_bounds;
  return (approximators.series.*bounds)(query.numbers[0], *query.digits);
}

Answer cos(Query const& query, Approximators& approximators) {
  if (query.kind == Query::shortened)
    return short_bounds(na::short_cos_bounds, query, approximators);
  auto& series = approximators.series;
  auto const& x = query.numbers[0];
  if (query.kind != Query::derivative) return na::cosine_bounds(series, x, *query.digits);
  auto const [lower, upper] = series.maclaurin_sin_bounds(x, *query.digits);
  return Bounds(QNumber(0) - upper, QNumber(0) - lower);
}

Answer pi(Query const& query, Approximators& approximators) {
  return query.kind == Query::shortened ? na::short_pi_bounds(*query.digits)
                                        : approximators.series.machin_pi_bounds(*query.digits);
}

Evaluation evaluation_of(real::Enclosure const& found) {
  return {{found.bounds.lower(), found.bounds.upper()}, found.is_narrow};
}

real::Accuracy accuracy_of(Query const& query) {
  return query.relative != 0 ? real::Accuracy::relative(*query.digits)
                             : real::Accuracy::absolute(*query.digits);
}

Answer eval(Query const& query, Approximators& approximators) {
  return certainly(query, [&]() -> Answer {
    return evaluation_of(
        real::enclose(approximators.functions, query.expressions[0], accuracy_of(query)));
  });
}

Proven prove_eval(Query const& query, Approximators& approximators) {
  Proven proven;
  certainly(query, [&]() -> Answer {
    auto found = certify::prove(approximators.functions, query.expressions[0], accuracy_of(query));
    proven = {evaluation_of(found.answer), std::move(found.certificate)};
    return {};
  });
  return proven;
}

std::string state_eval(Query const& query) {
  std::string statement;
  certainly(query, [&]() -> Answer {
    statement = certify::statement_of(query.expressions[0]);
    return {};
  });
  return statement;
}

std::string goal_of_eval(Query const& query, Answer const& answer) {
  auto const& [lower, upper] = std::get<Evaluation>(answer).bounds;
  return certify::to_coq(query.expressions[0], real::Interval(lower, upper), *query.digits);
}

/// The bounds with their certificate. Where there is none, that becomes a refusal.
template <class Certify>
Proven certified(Query const& query, Bounds const& bounds, Certify const& certify) {
  try {
    auto const [lower, upper] = std::minmax(bounds.first, bounds.second);
    auto certificate = certify(real::Interval(lower, upper));
    return {bounds, std::move(certificate)};
  } catch (certify::Unprovable const& error) {
    refuse(query, *query.words[0], error.what());
  }
}

/// `certify` makes a certificate of the bounds, and `certify_companion` one of their companions.
template <auto& solve, auto& certify, auto& certify_companion>
Proven prove_sum(Query const& query, Approximators& approximators) {
  auto const bounds = std::get<Bounds>(solve(query, approximators));
  constexpr decltype(&certify) makers[] = {certify, certify_companion};
  // Short bounds hold those of one digit more.
  unsigned const digits = *query.digits + (query.kind == Query::shortened ? 1 : 0);
  return certified(query, bounds, [&](real::Interval const& both) {
    return makers[query.kind == Query::derivative](approximators.series, query.numbers[0], digits,
                                                   both);
  });
}

/// `companion` is the derivative of the function.
template <auto& function, auto& companion>
std::string state_sum(Query const& query) {
  decltype(&function) const subjects[] = {&function, &companion};
  return certify::statement_of(subjects[query.kind == Query::derivative](query.numbers[0]));
}

real::Expression negative_sin(real::Expression x) { return -real::sin(std::move(x)); }

std::string state_pi(Query const&) { return certify::statement_of(real::Expression::pi()); }

Proven prove_pi(Query const& query, Approximators& approximators) {
  auto const bounds = std::get<Bounds>(pi(query, approximators));
  return certified(query, bounds, certify::certify_pi);
}

Answer compare(Query const& query, Approximators& approximators) {
  return certainly(query, [&]() -> Answer {
    auto const order =
        real::compare(approximators.functions, query.expressions[0], query.expressions[1]);
    if (!order) refuse_undecided(query);
    return Relation{std::is_lt(*order) ? "<" : std::is_gt(*order) ? ">" : "="};
  });
}

}  // namespace

std::span<Function const> all_functions() {
  using Kind = Argument::Kind;
  Argument const q = {"Q", Kind::value, "A fraction, decimal or expression"};
  Argument const x = {"X", Kind::number, "A fraction or decimal"};
  Argument const terms = {"--terms", Kind::terms, "Only the first N"};
  Argument const digits = {"DIGITS", Kind::digits,
                           "Decimal digits, which say how close the bounds are"};
  Flag const floor = {"--floor", &Query::floor, 1,
                      "Of a negative Q too, split toward minus infinity: all terms but\n"
                      "the first are positive"};
  Flag const shortened = {"--short", &Query::kind, Query::shortened,
                          "Short fractions, as close to each other; not with --derivative"};

  static Function const all[] = {
      {.name = "cf",
       .summary = "The continued fraction of Q",
       .examples =
           "  zelk cf 415/93                       [4; 2, 6, 7]\n"
           "  zelk cf 415/93 --terms 2             [4; 2]\n"
           "  zelk cf 'log(3/2)/log(2)' --terms 8  [0; 1, 1, 2, 2, 3, 1, 5]\n"
           "All terms of an expression are certain. If it is not known to be rational, --terms\n"
           "must say how many.\n"
           "A negative fraction whose parts fit in 64 bits is split toward zero, -7/2 into\n"
           "[-3; -2], and with --floor into [-4; 2]; of one that does not fit all terms but the\n"
           "first are positive.",
       .arguments = {q, terms},
       .flags = {floor},
       .can_be_plotted = false,
       .demand = demand_of_cf,
       .solve = cf},
      {.name = "approx",
       .summary = "The convergent of Q after TERMS terms of its continued fraction",
       .examples = "  zelk approx 415/93 2          9/2\n"
                   "  zelk approx 415/93 2 --lower  58/13",
       .arguments = {{"Q", Kind::number, "A fraction or decimal"},
                     {"TERMS", Kind::terms, "How many terms, at least 1 unless Q is an integer"}},
       .flags = {{"--lower", &Query::direction, -1,
                  "The first one from there on that is at most Q; not with --upper"},
                 {"--upper", &Query::direction, 1,
                  "The first one from there on that is at least Q; not with --lower"},
                 floor},
       .can_be_plotted = false,
       .demand = demand_of_approx,
       .solve = approx},
      {.name = "convergents",
       .summary = "All convergents of Q, each with its side of Q and its distance",
       .examples =
           "  zelk convergents 415/93 --terms 2   4 < 43/93 and 9/2 > 7/186\n"
           "  zelk convergents 'sqrt(2)' --terms 5\n"
           "Of an expression that is not known to be rational, --terms must say how many, and\n"
           "the distances are rounded up, by less than a hundredth, and their decimals to the\n"
           "nearest.",
       .arguments = {q, terms},
       .flags = {floor},
       .can_be_plotted = false,
       .demand = demand_of_convergents,
       .solve = convergents},
      {.name = "simplest",
       .summary = "The fraction of least denominator from A to B",
       .examples = "  zelk simplest 3.14 3.15       22/7\n"
                   "  zelk simplest 0 1/3 --open    1/4\n"
                   "Of several integers it is the one nearest to 0.",
       .arguments = {{"A", Kind::number, "The lower end, a fraction or decimal"},
                     {"B", Kind::number, "The upper end"}},
       .flags = {{"--open", &Query::open, 1, "Without A and B themselves"}},
       .can_be_plotted = false,
       .demand = demand_of_simplest,
       .solve = simplest},
      {.name = "best",
       .summary = "The fraction nearest to Q with a denominator up to N",
       .examples =
           "  zelk best 3.14159265358979 100          311/99\n"
           "  zelk best 3.14159265358979 100 --upper  22/7\n"
           "  zelk best pi 1000                       355/113\n"
           "Of two as near it is the one of the smaller denominator, and of two integers the\n"
           "one nearer to 0. --format both tells its side of Q and its distance too.",
       .arguments = {q, {"N", Kind::limit, "A whole number of any size, at least 1"}},
       .flags = {{"--lower", &Query::direction, -1,
                  "The greatest that is at most Q; not with --upper"},
                 {"--upper", &Query::direction, 1,
                  "The least that is at least Q; not with --lower"}},
       .can_be_plotted = false,
       .demand = demand_of_simplest,
       .solve = best},
      {.name = "exp",
       .summary = "Bounds of e^X less than 10^-DIGITS apart, one per line",
       .examples = "  zelk exp 1 20 --short\n"
                   "  zelk exp -7/2 10 --derivative",
       .arguments = {x, digits},
       .flags = {shortened,
                 {"--derivative", &Query::kind, Query::derivative,
                  "Companion bounds for the derivative instead, again e^X, of\n"
                  "any width; the larger comes first if X < 0"}},
       .can_be_plotted = true,
       .demand = demand_of_exp,
       .solve = exp,
       .prove = prove_sum<exp, certify::certify_exp, certify::certify_exp>,
       .state = state_sum<real::exp, real::exp>},
      {.name = "sin",
       .summary = "Bounds of sin X less than 2*10^-DIGITS apart, one per line",
       .examples = "  zelk sin 1/2 20 --short\n"
                   "  zelk sin -3.25 10 --derivative",
       .arguments = {x, digits},
       .flags = {shortened,
                 {"--derivative", &Query::kind, Query::derivative,
                  "Bounds of the derivative cos X instead, of any width"}},
       .can_be_plotted = true,
       .demand = demand_of_sine,
       .solve = sin,
       .prove = prove_sum<sin, certify::certify_sin, certify::certify_cos>,
       .state = state_sum<real::sin, real::cos>},
      {.name = "cos",
       .summary = "Bounds of cos X less than 2*10^-DIGITS apart, one per line",
       .examples = "  zelk cos 1/2 20 --short",
       .arguments = {x, digits},
       .flags = {shortened,
                 {"--derivative", &Query::kind, Query::derivative,
                  "Bounds of the derivative -sin X instead"}},
       .can_be_plotted = true,
       .demand = demand_of_sine,
       .solve = cos,
       .prove = prove_sum<cos, certify::certify_cos, certify::certify_negative_sin>,
       .state = state_sum<real::cos, negative_sin>},
      {.name = "pi",
       .summary = "Bounds of pi at most 10^-DIGITS apart, one per line",
       .examples = "  zelk pi 20 --short\n"
                   "  zelk pi 100000 --short --format decimal",
       .arguments = {digits},
       .flags = {{"--short", &Query::kind, Query::shortened,
                  "Short fractions, as close to each other, and in no time"}},
       .can_be_plotted = false,
       .demand = demand_of_pi,
       .solve = pi,
       .prove = prove_pi,
       .state = state_pi},
      {.name = "eval",
       .summary = "Bounds of an expression at most 10^-DIGITS apart, one per line",
       .examples =
           "  zelk eval 'log(3/2)/log(2)' 20\n"
           "  zelk eval 'exp(-1000)' 5 --relative --format decimal\n"
           "  zelk eval 'sin([0.1, 0.2]) - 1/3' 5\n"
           "An expression is made of numbers, intervals such as [0.1, 0.2], pi, e, + - * / ^,\n"
           "parentheses, and exp, log, sqrt, root(X, N), sin, cos, tan, asin, acos, atan, sinh,\n"
           "cosh and tanh. Over an interval the bounds hold all values; each interval varies on\n"
           "its own, so that [0, 1] - [0, 1] is [-1, 1].",
       .arguments = {{"EXPRESSION", Kind::expression, "In quotes, for the shell"}, digits},
       .flags = {{"--relative", &Query::relative, 1,
                  "So many digits of the value: bounds at most 10^-DIGITS times the\n"
                  "value apart; decimals have powers of ten"}},
       .can_be_plotted = false,
       .demand = demand_of_expression,
       .solve = eval,
       .prove = prove_eval,
       .state = state_eval,
       .goal = goal_of_eval},
      {.name = "compare",
       .summary = "Whether A is less than B, equal or greater: <, = or >",
       .examples =
           "  zelk compare 'pi^e' 'exp(pi)'            <\n"
           "  zelk compare 'sqrt(2)' 1.41421356237309  >\n"
           "Certain, or not answered: numbers that are equal are known to be only where both are\n"
           "rational by the rules of arithmetic, or as sqrt(4) is.",
       .arguments = {{"A", Kind::expression, "An expression"}, {"B", Kind::expression, "Another"}},
       .flags = {},
       .can_be_plotted = false,
       .demand = demand_of_expression,
       .solve = compare},
  };
  return all;
}

Function const* find_function(std::string_view name) {
  auto const all = all_functions();
  auto const found = std::ranges::find(all, name, &Function::name);
  return found == all.end() ? nullptr : &*found;
}

}  // namespace zelk::cli
