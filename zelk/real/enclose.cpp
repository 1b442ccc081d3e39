#include "zelk/real/enclose.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "zelk/approx/best.h"
#include "zelk/approx/convergents.h"
#include "zelk/approx/simplest.h"
#include "zelk/numbers/functions.h"
#include "zelk/numbers/integer.h"
#include "zelk/real/internal/refinement.h"

namespace zelk::real {

namespace {

using Missing = std::optional<unsigned long>;
constexpr Missing nothing = std::nullopt;

/// How near bounds have to be to the number between them, and how far they may move for short ends.
class Tolerance {
 public:
  Tolerance(Accuracy wanted, unsigned most)
      : unit(zelk::pow(10, -static_cast<long>(wanted.digits()))),
        is_relative(wanted.is_relative()),
        most_digits(most) {}

  /// Short ends have long gcds, which only a number in lowest terms needs.
  bool is_kept_by(Interval const& bounds) const {
    if (!bounds.lower().is_big() && !bounds.upper().is_big())
      return bounds.width() <= allowed(bounds);
    if (is_relative && bounds.sign() == 0) return false;
    auto const& nearest = bounds.sign() < 0 ? bounds.upper() : bounds.lower();
    Integer width, divisor;
    mpz_mul(width, bounds.upper().numerator(), bounds.lower().denominator());
    mpz_submul(width, bounds.lower().numerator(), bounds.upper().denominator());
    mpz_mul(width, width, unit.denominator());
    mpz_mul(divisor, bounds.upper().denominator(), bounds.lower().denominator());
    if (is_relative) {
      mpz_mul(width, width, nearest.denominator());
      mpz_mul(divisor, divisor, nearest.numerator());
    }
    return mpz_cmpabs(width, divisor) <= 0;
  }

  /// A half of what is allowed is left for short ends.
  bool is_narrow(Interval const& enclosure) const {
    return enclosure.is_point() || !(allowed(enclosure) < 2 * enclosure.width());
  }

  /// How many digits too wide an enclosure is; nothing if it is not, or is given up.
  Missing missing(Interval const& enclosure, Signs signs) const {
    if (is_narrow(enclosure)) return nothing;
    auto const width = enclosure.width(), goal = allowed(enclosure);
    if (goal.is_zero()) return signs.zero && is_hopeless(width, most_digits) ? nothing : Missing(0);
    long const excess = decimal_magnitude(width) - decimal_magnitude(goal) + 3;
    return static_cast<unsigned long>(std::max(0L, excess));
  }

  /// How far each end may move outward. If one moves toward 0, what is allowed becomes less, but by
  /// no more than it moves.
  QNumber slack(Interval const& enclosure) const {
    if (enclosure.is_point()) return 0;
    return std::max(QNumber(0), (allowed(enclosure) - enclosure.width()) / 3);
  }

 private:
  /// 0 for numbers that may be 0, if that matters.
  QNumber allowed(Interval const& enclosure) const {
    if (!is_relative) return unit;
    if (enclosure.sign() == 0) return 0;
    return unit * std::min(abs(enclosure.lower()), abs(enclosure.upper()));
  }

  QNumber unit;
  bool is_relative;
  unsigned most_digits;
};

Interval shortened(Interval const& bounds, QNumber const& lower_slack, QNumber const& upper_slack) {
  auto [lower, upper] = na::shortened({bounds.lower(), bounds.upper()}, lower_slack, upper_slack);
  return {std::move(lower), std::move(upper)};
}

/// What `decide` says of the value: a function of an interval and the signs in it, whose answer
/// holds for all numbers in it, and is nothing if there is no common one. Enclosures are taken down
/// to 10^-extra_digits times the width at which others give up.
template <class Decide>
auto decision(ElementaryFunctions& functions, Expression const& expression,
              unsigned long extra_digits, unsigned most_digits, Decide const& decide) {
  decltype(decide(std::declval<Interval>(), std::declval<Signs>())) answer;
  auto const judge = [&](Value const& value, Signs signs) -> Missing {
    answer = decide(value.outer(), signs);
    if (answer) return nothing;
    if (auto const inner = value.inner(); inner && !decide(*inner, Signs::of(*inner)))
      return nothing;
    return is_hopeless(value.unknown_width(), extra_digits + most_digits) ? nothing : Missing(0);
  };
  refine(functions, expression, extra_digits, most_digits, judge);
  return answer;
}

using Best = QNumber(QNumber const& q, QNumber const& limit);

std::optional<QNumber> best(ElementaryFunctions& functions, Expression const& expression,
                            QNumber const& limit, unsigned most_digits, Best& best_for) {
  auto const digits = limit.is_zero() ? 0 : 2 * std::max(0L, decimal_magnitude(limit));
  return decision(functions, expression, static_cast<unsigned long>(digits), most_digits,
                  [&](Interval const& x, Signs) -> std::optional<QNumber> {
                    auto answer = best_for(x.lower(), limit);
                    // It never falls where x grows: what it is at both ends, it is between them.
                    if (!x.is_point() && !(best_for(x.upper(), limit) == answer)) return {};
                    return answer;
                  });
}

}  // namespace

Enclosure enclose(ElementaryFunctions& functions, Expression const& expression, Accuracy accuracy,
                  unsigned most_digits, Steps* steps) {
  Precision::require_digits(functions, accuracy.digits());  // whose power of ten comes next
  Tolerance const tolerance(accuracy, most_digits);
  Value found(0);
  auto const judge = [&](Value const& value, Signs signs) {
    // What is narrow enough as a whole is like one number.
    auto const outer = value.outer();
    found = tolerance.is_narrow(outer) ? Value::number(outer) : value;
    return std::max(tolerance.missing(found.lower_end(), signs),
                    tolerance.missing(found.upper_end(), signs));
  };
  refine(functions, expression, accuracy.digits(), most_digits, judge, steps);
  bool const stands_alone = expression.postfix().size() == 1 && !expression.numbers().empty();
  auto const bounds = stands_alone ? expression.numbers()[0]  // its own answer
                                   : shortened(found.outer(), tolerance.slack(found.lower_end()),
                                               tolerance.slack(found.upper_end()));
  return {bounds, tolerance.is_kept_by(bounds)};
}

Terms terms(ElementaryFunctions& functions, Expression const& expression, std::size_t count,
            unsigned most_digits) {
  Terms answer{{}, false};
  auto& found = answer.terms;
  // A term takes 1.03 digits on the average.
  auto const digits_for = [](std::size_t terms) { return terms + terms / 16; };
  refine(functions, expression, digits_for(count), most_digits,
         [&](Value const& value, Signs) -> Missing {
           auto const outer = value.outer();
           found = na::common_terms(outer.lower(), outer.upper());
           answer.is_whole = outer.is_point() && found.size() <= count;
           if (outer.is_point() || found.size() >= count) return nothing;
           auto const inner = value.inner();
           if (inner && na::common_terms(inner->lower(), inner->upper()).size() == found.size())
             return nothing;
           if (is_hopeless(value.unknown_width(), most_digits + 2 * count)) return nothing;
           return digits_for(count - found.size());
         });
  if (found.size() > count)
    found.erase(found.begin() + static_cast<std::ptrdiff_t>(count), found.end());
  return answer;
}

std::vector<QNumber> convergents(ElementaryFunctions& functions, Expression const& expression,
                                 std::size_t count, unsigned most_digits) {
  return na::convergents(terms(functions, expression, count, most_digits).terms);
}

std::optional<QNumber> best_below(ElementaryFunctions& functions, Expression const& expression,
                                  QNumber const& limit, unsigned most_digits) {
  return best(functions, expression, limit, most_digits, na::best_below);
}

std::optional<QNumber> best_above(ElementaryFunctions& functions, Expression const& expression,
                                  QNumber const& limit, unsigned most_digits) {
  return best(functions, expression, limit, most_digits, na::best_above);
}

std::optional<QNumber> best_nearest(ElementaryFunctions& functions, Expression const& expression,
                                    QNumber const& limit, unsigned most_digits) {
  return best(functions, expression, limit, most_digits, na::best_nearest);
}

std::optional<std::strong_ordering> sign(ElementaryFunctions& functions,
                                         Expression const& expression, unsigned most_digits) {
  return decision(functions, expression, 0, most_digits,
                  [](Interval const&, Signs signs) { return signs.only(); });
}

std::optional<std::strong_ordering> compare(ElementaryFunctions& functions, Expression const& a,
                                            Expression const& b, unsigned most_digits) {
  return sign(functions, a - b, most_digits);
}

}  // namespace zelk::real
