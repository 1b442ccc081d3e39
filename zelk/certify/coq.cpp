#include "zelk/certify/coq.h"

#include <optional>
#include <utility>
#include <vector>

#include "zelk/certify/internal/arity.h"
#include "zelk/convert/text.h"
#include "zelk/numbers/functions.h"

namespace zelk::certify {

namespace {

using convert::to_string;
using real::Interval;
using real::Kind;

std::string literal(QNumber const& q) {
  auto const text = to_string(q);
  return q.is_integer() && q.sign() >= 0 ? text : "(" + text + ")";
}

/// A part of a goal, and what it is if it is a rational number.
struct Term {
  std::string text;
  std::optional<QNumber> value;
};

class Goal {
 public:
  Term number(Interval const& x) {
    if (x.is_point()) return {literal(x.lower()), x.lower()};
    auto const name = "x" + std::to_string(++variables);
    premises += "forall " + name + ", " + literal(x.lower()) + " <= " + name +
                " <= " + literal(x.upper()) + " -> ";
    return {name, {}};
  }

  Term combined(Kind kind, Term const& x, Term const& y) {
    switch (kind) {
      case Kind::number:
      case Kind::variable:
        break;
      case Kind::pi:
        return {"PI", {}};
      case Kind::e:
        return {"(exp 1)", {}};
      case Kind::negative:
        return {"(- " + x.text + ")", x.value ? std::optional(-*x.value) : std::nullopt};
      case Kind::sum:
        return infix(x, '+', y);
      case Kind::difference:
        return infix(x, '-', y);
      case Kind::product:
        return infix(x, '*', y);
      case Kind::quotient: {
        auto quotient = infix(x, '/', y);
        if (x.value && y.value && !y.value->is_zero()) quotient.value = *x.value / *y.value;
        return quotient;
      }
      case Kind::power:
        return power(x, y);
      case Kind::root: {
        Term const inverse{"(/ " + y.text + ")", {}};
        return power(x, y.value && !y.value->is_zero() ? number(y.value->inv()) : inverse);
      }
      case Kind::exp:
        return call("exp", x);
      case Kind::log:
        return call("ln", x);
      case Kind::sqrt:
        return call("sqrt", x);
      case Kind::sin:
        return call("sin", x);
      case Kind::cos:
        return call("cos", x);
      case Kind::tan:
        return call("tan", x);
      case Kind::atan:
        return call("atan", x);
      case Kind::asin:
        return arc("asin", x);
      case Kind::acos:
        return arc("acos", x);
      case Kind::sinh:
        return call("sinh", x);
      case Kind::cosh:
        return call("cosh", x);
      case Kind::tanh:
        return call("tanh", x);
    }
    throw std::invalid_argument("the variable x has no value");
  }

  /// What ranges over the intervals.
  std::string const& quantifiers() const { return premises; }

  /// What makes the goal one of functions that the tactic knows, with its parameters in it.
  std::string preparation(std::string const& parameters) const {
    std::string text = "intros; unfold Rpower, sinh, cosh, tanh";
    if (has_arcs) {
      auto const rewrite = [&](char const* lemma) {
        return std::string("; repeat rewrite ") + lemma + " by (split; interval" + parameters + ")";
      };
      text += rewrite("acos_asin") + "; rewrite ?asin_opp, ?asin_1" + rewrite("asin_atan") +
              "; unfold Rsqr";
    }
    return text;
  }

 private:
  static Term infix(Term const& x, char sign, Term const& y) {
    return {"(" + x.text + " " + sign + " " + y.text + ")", {}};
  }
  static Term call(char const* name, Term const& x) {
    return {std::string("(") + name + " " + x.text + ")", {}};
  }
  static Term power(Term const& x, Term const& y) {
    if (!y.value || !y.value->is_integer()) {
      // Coq's power of what is not positive is another.
      bool const is_odd_root = y.value && x.value && x.value->sign() < 0;
      auto const& base = is_odd_root ? literal(-*x.value) : x.text;
      auto const size = "(Rpower " + base + " " + y.text + ")";
      return {is_odd_root ? "(- " + size + ")" : size, {}};
    }
    auto const size = "(" + x.text + " ^ " + to_string(abs(*y.value)) + ")";
    return {y.value->sign() < 0 ? "(/ " + size + ")" : size, {}};
  }

  /// -1 is written so that lemmas on opposites apply.
  Term arc(char const* name, Term const& x) {
    has_arcs = true;
    return call(name, x.value == QNumber(-1) ? Term{"(-(1))", {}} : x);
  }

  std::string premises;
  unsigned variables = 0;
  bool has_arcs = false;
};

}  // namespace

std::string to_coq(real::Expression const& expression, Interval const& bounds, unsigned digits) {
  Goal goal;
  std::vector<Term> terms;
  auto next = expression.numbers().begin();
  for (Kind const kind : expression.postfix()) {
    if (kind == Kind::number) {
      terms.push_back(goal.number(*next++));
      continue;
    }
    auto const take = [&, arity = arity_of(kind)](std::size_t operand) {
      return operand < arity ? terms[terms.size() - arity + operand] : Term{};
    };
    auto term = goal.combined(kind, take(0), take(1));
    terms.resize(terms.size() - arity_of(kind));
    terms.push_back(std::move(term));
  }
  // log2 10 < 3.322; some bits for the errors of the steps.
  auto const bits = std::to_string(digits * 3322UL / 1000 + 40);
  auto const parameters = " with (i_prec " + bits + ")";
  return "From Coq Require Import Reals.\nFrom Interval Require Import Tactic.\nOpen Scope "
         "R_scope.\n"
         "Goal " +
         goal.quantifiers() + literal(bounds.lower()) + " <= " + terms.back().text +
         " <= " + literal(bounds.upper()) + ".\nProof.\n  " + goal.preparation(parameters) +
         "; interval" + parameters + ".\nQed.\n";
}

}  // namespace zelk::certify
