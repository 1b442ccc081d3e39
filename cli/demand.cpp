#include "cli/demand.h"

#include <gmp.h>

#include <algorithm>
#include <climits>
#include <cmath>

#include "zelk/convert/machine.h"

// Only sizes are estimated here. No answer depends on them, so floating point will do.

namespace zelk::cli {
namespace {

double bits(mpz_srcptr n) { return static_cast<double>(mpz_sizeinbase(n, 2)); }

double bits(QNumber const& q) { return bits(q.numerator()) + bits(q.denominator()); }

/// One number printed with decimals: an integer of so many digits, and its text.
double decimals(Query const& query) { return 16.0 * query.places.value_or(0); }

/// Somewhat less than ln n!, by Stirling's formula. (`std::lgamma` is not for several threads.)
double log_of_factorial(double n) {
  return n * (std::log(n) - 1) + std::log(2 * std::acos(-1.0) * n) / 2;
}

/// The terms asked for, each with what is kept of it. A fraction whose denominator has b bits has
/// 12 ln 2 / pi^2 * ln 2 * b = 0.584 b terms on the average, by Levy's theorem; twice as many are
/// taken into account.
Demand continued_fraction(Query const& query, double size_of_term) {
  QNumber const& q = query.numbers[0];
  double const below = bits(q.denominator());
  double const terms = std::min(below == 1 ? 1 : 1.17 * below + 2, double(query.terms));
  return {terms * size_of_term, terms * bits(q)};
}

/// Expressions to so many digits: each operation holds some numbers of that size, and takes as many
/// products as a series summed by splitting does.
Demand evaluation(Query const& query, double digits) {
  double operations = 0;
  for (auto const& expression : query.expressions)
    operations += static_cast<double>(expression.postfix().size());
  double const size = 3.4 * (digits + 20);
  return {40 * operations * size + 2 * decimals(query), 2000 * operations * size};
}

/// So many partial quotients take 1.03 digits each, on the average, by Lochs' theorem.
double digits_of_terms(Query const& query) {
  return query.terms == UINT_MAX ? 0 : 1.03 * query.terms;
}

/// The digits that decide the sign of sin x: a few, or, if x is near a multiple k pi, as many as x
/// and k pi have in common. A double tells x from k pi unless they agree in six decimals. Then the
/// worst is assumed: a fraction with the denominator q is hardly ever nearer than 1/q^2 to a number
/// like k pi.
double digits_of_sign(QNumber const& q) {
  double const x = convert::to_double(q, convert::Rounding::nearest);
  bool const may_be_zero = std::abs(x) > 1 && std::abs(std::remainder(x, std::acos(-1.0))) < 1e-6;
  return may_be_zero ? 2 * std::log10(2) * bits(q.denominator()) : 6;
}

/// The series of x = p/q takes n terms, the least n with |x|^n / n! < 10^-digits, and its common
/// denominator is n! q^n. A stored record holds eight integers of that size. Four more grow from
/// term to term, by products with p and q.
/// Short bounds are made of products of as many digits.
Demand series(Query const& query, double digits) {
  QNumber const& x = query.numbers[0];
  bool const is_short = query.kind == Query::shortened;
  double const below = bits(x.denominator());
  double const log_of_x = std::log(2) * (bits(x.numerator()) - below + 1);  // at least ln |x|
  double const goal = digits * std::log(10);
  double low = 1;
  double high = 1e18;
  while (high > 1.01 * low + 1) {
    double const middle = std::sqrt(low * high);
    (log_of_factorial(middle) - middle * log_of_x > goal ? high : low) = middle;
  }
  double const denominator = high * (below + std::log2(high));
  double const limbs = std::min(bits(x) / 64, 50.0);  // a longer product costs less for each limb
  return {8 * denominator + 100 * is_short * digits + 2 * decimals(query),
          4 * high * denominator * (1 + limbs), high};
}

}  // namespace

Demand demand_of_cf(Query const& query) {
  if (!query.expressions.empty()) return evaluation(query, digits_of_terms(query));
  return continued_fraction(query, 1000);  // a term is held twice, in allocations of its own
}

Demand demand_of_approx(Query const& query) {
  Demand demand = continued_fraction(query, 1000);
  demand.held += decimals(query);
  return demand;
}

Demand demand_of_convergents(Query const& query) {
  if (!query.expressions.empty()) {
    // Each is compared with the value, to twice the digits that it has itself, or those printed.
    double const digits = digits_of_terms(query);
    Demand demand = evaluation(query, std::max<double>(2 * digits, query.places.value_or(0)));
    demand.held += digits * (4000 + 10 * digits + 2 * decimals(query));
    demand.worked_through *= digits + 1;
    return demand;
  }
  // Each convergent is held with its distance, and both as text.
  return continued_fraction(query, 4000 + 10 * bits(query.numbers[0]) + 2 * decimals(query));
}

Demand demand_of_simplest(Query const& query) {
  if (!query.expressions.empty())
    return evaluation(query, std::max<double>(2 * bits(query.numbers[0]) / std::log2(10),
                                              query.places.value_or(0)));
  // All steps together are like some tens of products of the two numbers.
  double const size = bits(query.numbers[0]) + bits(query.numbers[1]);
  return {20 * size + decimals(query), 1000 * size};
}

Demand demand_of_exp(Query const& query) { return series(query, *query.digits); }

Demand demand_of_sine(Query const& query) {
  double const digits = std::max<double>(*query.digits, digits_of_sign(query.numbers[0]));
  return series(query, digits);
}

Demand demand_of_pi(Query const& query) {
  if (query.kind == Query::shortened) {
    // A sum by splitting, and the simplest ends: some tens of integers with as many digits, and for
    // each level of the splitting as many products.
    double const digits = *query.digits;
    return {600 * (digits + 100) + 2 * decimals(query), 4000 * (digits + 100)};
  }
  // Some 20 convergents for each digit are kept, with 17 bits for each digit on the average.
  double const square = double(*query.digits) * *query.digits;
  return {400 * square + 2 * decimals(query), 4000 * square, 20.0 * *query.digits};
}

Demand demand_of_expression(Query const& query) {
  return evaluation(query, query.digits.value_or(0));
}

}  // namespace zelk::cli
