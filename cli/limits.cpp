#include "cli/limits.h"

#include <gmp.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zelk::cli {
namespace {

// Estimates only, of sizes: no answer depends on them, so floating point will do.

double bits(mpz_srcptr n) { return static_cast<double>(mpz_sizeinbase(n, 2)); }

struct Estimate {
  double held;
  double worked_through;
};

/// The terms of a number, and what a term takes. A fraction with a denominator of b bits has about
/// 1.17 b terms on the average (Levy).
Estimate expansion(Query const& query, double size_of_term) {
  double const below = bits(query.number.denominator());
  double const terms = std::min(below == 1 ? 1 : 1.17 * below + 2, double(query.count));
  return {terms * size_of_term, terms * (bits(query.number.numerator()) + below)};
}

/// The least n with |x|^n/n! < 10^-digits is the number of terms, and n! q^n the size of each of
/// the eight integers that a record holds, and of the four that grow with each term.
Estimate series(Query const& query) {
  double const size = std::log(2) * (bits(query.number.numerator()) -
                                     bits(query.number.denominator()) + 1);  // at least ln |x|
  double const goal = query.count * std::log(10);
  double low = 1;
  double high = 1e18;
  while (high > 1.01 * low + 1) {
    double const middle = std::sqrt(low * high);
    (std::lgamma(middle + 1) - middle * size > goal ? high : low) = middle;
  }
  double const denominator = high * (bits(query.number.denominator()) + std::log2(high));
  return {8 * denominator, 4 * high * denominator};
}

Estimate estimate(Query const& query, unsigned places) {
  double const size = bits(query.number.numerator()) + bits(query.number.denominator());
  switch (query.function) {
    case Function::cf:
    case Function::approx:
      return expansion(query, 1000);  // two copies in blocks of their own
    case Function::convergents:       // each with its distance, and both as text
      return expansion(query, 4000 + 10 * size + 16.0 * places);
    case Function::pi:  // some 1.8 convergents a digit, each with a key of 34 bits a digit
      return {1000.0 * query.count * query.count, 4000.0 * query.count * query.count};
    default:
      return series(query);
  }
}

}  // namespace

void Limits::check(Query const& query, unsigned places) const {
  auto const refuse = [](std::string const& reason) {
    throw Refusal(Refusal::Kind::unanswerable, 1, reason, reason);
  };
  bool const counts_digits = signature_of(query.function).count == "DIGITS";
  if (counts_digits && query.count > max_digits)
    refuse(std::to_string(query.count) + " digits are more than --max-digits " +
           std::to_string(max_digits));
  auto const [held, worked_through] = estimate(query, places);
  char text[128];
  if (held > max_bits) {
    std::snprintf(text, sizeof text, "would take about %.1e bits, more than --max-bits %.0f", held,
                  max_bits);
    refuse(text);
  }
  if (worked_through > 1000 * max_bits) {
    std::snprintf(text, sizeof text,
                  "would work through about %.1e bits, more than a thousand times --max-bits %.0f",
                  worked_through, max_bits);
    refuse(text);
  }
}

}  // namespace zelk::cli
