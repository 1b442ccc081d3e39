#include "cli/limits.h"

#include <gmp.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zelk::cli {
namespace {

// Estimates only, of sizes: no answer depends on them, so floating point will do.

double bits(mpz_srcptr n) { return static_cast<double>(mpz_sizeinbase(n, 2)); }

/// Of the parts of q together.
double size_of(QNumber const& q) { return bits(q.numerator()) + bits(q.denominator()); }

/// A number of b bits has about 0.584 b terms (Khinchin, Levy), each in a block of its own.
double expansion(Query const& query, double size_of_term) {
  double const terms = std::min(0.584 / 2 * size_of(query.number) + 1, double(query.count));
  return terms * size_of_term;
}

/// The least n with |x|^n/n! < 10^-digits is the number of terms, and n! q^n the size of each of
/// the eight integers that a record holds.
double series(Query const& query) {
  double const size = std::log(2) * (bits(query.number.numerator()) -
                                     bits(query.number.denominator()) + 1);  // at least ln |x|
  double const goal = query.count * std::log(10);
  double low = 1;
  double high = 1e18;
  while (high > 1.01 * low + 1) {
    double const middle = std::sqrt(low * high);
    (std::lgamma(middle + 1) - middle * size > goal ? high : low) = middle;
  }
  return 8 * high * (bits(query.number.denominator()) + std::log2(high));
}

double estimate(Query const& query) {
  switch (query.function) {
    case Function::cf:
      return expansion(query, 1000);  // two copies in blocks of their own
    case Function::convergents:
      return expansion(query, 2000 + 2 * size_of(query.number));
    case Function::approx:
      return expansion(query, 1000);
    case Function::pi:  // some 1.8 convergents a digit, each with a key of 34 bits a digit
      return 1000.0 * query.count * query.count;
    default:
      return series(query);
  }
}

}  // namespace

void Limits::check(Query const& query) const {
  auto const refuse = [](std::string const& reason) {
    throw Refusal(Refusal::Kind::unanswerable, 1, reason, reason);
  };
  bool const counts_digits = signature_of(query.function).count == "DIGITS";
  if (counts_digits && query.count > max_digits)
    refuse(std::to_string(query.count) + " digits are more than --max-digits " +
           std::to_string(max_digits));
  if (double const needed = estimate(query); needed > max_bits) {
    char text[128];
    std::snprintf(text, sizeof text, "would take about %.1e bits, more than --max-bits %.0f",
                  needed, max_bits);
    refuse(text);
  }
}

}  // namespace zelk::cli
