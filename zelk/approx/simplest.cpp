#include "zelk/approx/simplest.h"

#include <stdexcept>
#include <utility>

#include "zelk/approx/internal/interval_expansion.h"
#include "zelk/approx/internal/quick_ends.h"
#include "zelk/approx/internal/ratio.h"
#include "zelk/approx/internal/simplest_ends.h"
#include "zelk/numbers/integer.h"

namespace zelk::na {

namespace {

/// The sign of upper - lower, by which an interval has a length or is one number.
int require_interval(QNumber const& lower, QNumber const& upper) {
  Ratio length;
  length.set_difference(upper, lower);
  int const sign = mpz_sgn(length.n.get());
  if (sign < 0) throw std::domain_error("the lower end of an interval is above the upper one");
  return sign;
}

}  // namespace

QNumber simplest_between(QNumber const& lower, QNumber const& upper, Ends ends) {
  if (require_interval(lower, upper) == 0) {
    if (ends != Ends::closed) throw std::domain_error("the interval is empty");
    return QNumber::from_lowest_terms({lower.numerator(), lower.denominator()});
  }
  IntervalExpansion x(lower.numerator(), lower.denominator(), upper.numerator(),
                      upper.denominator());
  expand_to_simplest(x, ends == Ends::open || ends == Ends::left_open,
                     ends == Ends::open || ends == Ends::right_open);
  return QNumber::from_lowest_terms({x.prefix.h, x.prefix.k});
}

std::pair<QNumber, QNumber> shortened(std::pair<QNumber, QNumber> const& bounds,
                                      QNumber const& slack) {
  return shortened(bounds, slack, slack);
}

std::pair<QNumber, QNumber> shortened(std::pair<QNumber, QNumber> const& bounds,
                                      QNumber const& lower_slack, QNumber const& upper_slack) {
  auto const& [lower, upper] = bounds;
  if (lower_slack.sign() < 0 || upper_slack.sign() < 0)
    throw std::domain_error("a slack is negative");
  if (auto ends = quickly_shortened(lower, upper, lower_slack, upper_slack)) return *ends;
  require_interval(lower, upper);
  Ratio outer_lower, outer_upper;
  outer_lower.set_difference(lower, lower_slack);
  outer_upper.set_sum(upper, upper_slack);
  return simplest_ends(outer_lower, Ratio(lower), Ratio(upper), outer_upper);
}

std::vector<QNumber> common_terms(QNumber const& lower, QNumber const& upper) {
  require_interval(lower, upper);
  std::vector<QNumber> terms;
  IntervalExpansion x(lower.numerator(), lower.denominator(), upper.numerator(),
                      upper.denominator());
  x.terms = &terms;
  x.split_all();
  // What is left holds an integer, at which the numbers part, unless it is the lower end and the
  // only one: then all go through it.
  Integer floor, upper_floor;
  mpz_fdiv_q(floor, x.lower.n, x.lower.d);
  mpz_fdiv_q(upper_floor, x.upper.n, x.upper.d);
  if (mpz_cmp(floor, upper_floor) == 0)
    terms.push_back(QNumber::from_lowest_terms({floor, Integer(1UL)}));
  return terms;
}

}  // namespace zelk::na
