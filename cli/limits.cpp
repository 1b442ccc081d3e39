#include "cli/limits.h"

#include <gmp.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "zelk/convert/machine.h"

namespace zelk::cli {
namespace {

// Estimates only, of sizes: no answer depends on them, so floating point will do.

double bits(mpz_srcptr n) { return static_cast<double>(mpz_sizeinbase(n, 2)); }

/// What comes of printing one number: its decimals as digits and as text.
double decimals(unsigned places) { return 16.0 * places; }

/// The terms of a number, and what a term takes. A fraction with a denominator of b bits has about
/// 1.17 b terms on the average (Levy).
Demand expansion(Query const& query, double size_of_term) {
  double const below = bits(query.number.denominator());
  double const terms = std::min(below == 1 ? 1 : 1.17 * below + 2, double(query.count));
  return {terms * size_of_term, terms * (bits(query.number.numerator()) + below)};
}

/// How many digits a sine needs until its sign is certain: as many as x agrees in with a multiple
/// of pi. Where a double cannot tell x from one the worst is assumed, that it is about 1/q^2 away,
/// as near as fractions with its denominator q come to any number that is none.
double digits_of_sign(Query const& query) {
  double const x = convert::to_double(query.number, convert::Rounding::nearest);
  bool const may_be_zero = std::abs(x) > 1 && std::abs(std::remainder(x, std::acos(-1.0))) < 1e-6;
  return may_be_zero ? 2 * std::log10(2) * bits(query.number.denominator()) : 6;
}

/// The least n with |x|^n/n! < 10^-digits is the number of terms, and n! q^n the size of each of
/// the eight integers that a record holds, and of the four that grow with each term, by products
/// with p and q, x = p/q.
Demand series(Query const& query) {
  double const above = bits(query.number.numerator());
  double const below = bits(query.number.denominator());
  double const size = std::log(2) * (above - below + 1);  // at least ln |x|
  double const digits = query.function == Function::exp
                            ? query.count
                            : std::max<double>(query.count, digits_of_sign(query));
  double const goal = digits * std::log(10);
  double low = 1;
  double high = 1e18;
  while (high > 1.01 * low + 1) {
    double const middle = std::sqrt(low * high);
    (std::lgamma(middle + 1) - middle * size > goal ? high : low) = middle;
  }
  double const denominator = high * (below + std::log2(high));
  double const limbs = std::min((above + below) / 64, 50.0);  // longer products cost less a limb
  return {8 * denominator, 4 * high * denominator * (1 + limbs)};
}

Demand demand_of(Query const& query, unsigned places) {
  double const size = bits(query.number.numerator()) + bits(query.number.denominator());
  Demand demand = {0, 0};
  switch (query.function) {
    case Function::cf:
      return expansion(query, 1000);  // two copies in blocks of their own
    case Function::approx:
      demand = expansion(query, 1000);
      demand.held += decimals(places);
      return demand;
    case Function::convergents:  // each with its distance, and both as text
      return expansion(query, 4000 + 10 * size + 2 * decimals(places));
    case Function::pi: {  // some 1.8 convergents a digit, each with a key of 34 bits a digit
      double const square = double(query.count) * query.count;
      demand = {1000 * square, 4000 * square};
      break;
    }
    default:
      demand = series(query);
  }
  demand.held += 2 * decimals(places);
  return demand;
}

[[noreturn]] void refuse(std::string const& reason) {
  throw Refusal(Refusal::Kind::unanswerable, 1, reason, reason);
}

}  // namespace

Demand Limits::check(Query const& query, unsigned places) const {
  bool const counts_digits = signature_of(query.function).count == "DIGITS";
  if (counts_digits && query.count > max_digits)
    refuse(std::to_string(query.count) + " digits are more than --max-digits " +
           std::to_string(max_digits));
  Demand const demand = demand_of(query, places);
  check(demand);
  return demand;
}

void Limits::check(Demand const& demand) const {
  char text[128];
  if (demand.held > max_bits) {
    std::snprintf(text, sizeof text, "would take about %.1e bits, more than --max-bits %.0f",
                  demand.held, max_bits);
    refuse(text);
  }
  if (demand.worked_through > 1000 * max_bits) {
    std::snprintf(text, sizeof text,
                  "would work through about %.1e bits, more than a thousand times --max-bits %.0f",
                  demand.worked_through, max_bits);
    refuse(text);
  }
}

}  // namespace zelk::cli
