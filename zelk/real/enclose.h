#pragma once

#include <compare>
#include <optional>
#include <vector>

#include "zelk/config.h"
#include "zelk/numbers/q_number.h"
#include "zelk/real/accuracy.h"
#include "zelk/real/elementary_functions.h"
#include "zelk/real/errors.h"
#include "zelk/real/expression.h"
#include "zelk/real/interval.h"

/// What an expression is worth. All answers are certain: the expression is enclosed, ever more
/// precisely, until the enclosure proves the answer.
///
/// Two things no precision decides. An enclosure cannot tell apart numbers that are equal, unless
/// they are found exactly: sums, products, quotients and integer powers of rationals are exact (up
/// to a million bits, or several times the precision), and so are rational values of functions of
/// rationals, as sqrt(4) and exp(0); sin(1)^2 + cos(1)^2 is not known to be 1. Where only such a
/// difference from 0 matters, it is given up as soon as it is seen to be less than
/// 10^-most_digits; what the formula alone shows not to be 0, as powers of e and their products,
/// has its sign at once, and significant digits as far as there is room for the zeros before them.
/// And an interval put into the expression has a width that remains.
///
/// Errors, of all functions here (zelk/real/errors.h): `Undefined` or `DivisionByZero` if an
/// operation is not defined on all of its operands, and `NotDecided` if it has been given up to
/// tell, as for log(sin(1)^2 + cos(1)^2 - 1); `TooLong` if a number would take more bits on the way
/// than functions.max_bits() allows, 32 times its length, or 8 times that of an exact power or
/// product, or if it has been given up to tell;
/// `std::invalid_argument` if the expression has a variable.
///
/// Cost: all operations at a precision slightly above what is asked for, and again, at least half
/// as precise again, for as long as digits are missing: usually once or twice in all, and in total
/// a few times the last.
namespace zelk::real {

inline constexpr unsigned default_most_digits = 10000;

struct [[nodiscard]] Enclosure {
  Interval bounds;

  /// Whether they are as near to each other as the accuracy asks. If not, the cause is an interval
  /// in the expression: then each end is as near as that to the end of the natural interval
  /// extension. Or the accuracy is relative, and the value has been given up to tell from 0, or
  /// begins with more zeros than there is room for.
  bool is_narrow;
};

/// What an enclosure rests on.
struct Steps {
  /// What encloses each part of the expression, in postfix order. Sums, products and quotients, and
  /// powers of few bits, hold what interval arithmetic makes of their operands; images under
  /// functions are those of `ElementaryFunctions`, which keep their margin at `digits` digits, or
  /// so many digits of the value. The last lies in the answer.
  std::vector<Interval> parts;
  unsigned digits = 0;
};

/// Bounds of the value, at most 10^-digits apart, or 10^-digits times the value, and rational
/// numbers that are short for that; a value known to be rational exactly.
ZELK_EXPORT Enclosure enclose(ElementaryFunctions& functions, Expression const& expression,
                              Accuracy accuracy, unsigned most_digits = default_most_digits,
                              Steps* steps = nullptr);

/// The beginning of a continued fraction, canonical: floors, and the last of several at least 2.
struct [[nodiscard]] Terms {
  std::vector<QNumber> terms;

  /// Whether it is all of it, which only a rational number has.
  bool is_whole;
};

/// The first `count` partial quotients of the value; the whole expansion if it is known and no
/// longer; fewer if no more are common to all of an interval, or if one has been given up: these
/// enclosures are taken down to a width of 10^-(most_digits + 2 count).
ZELK_EXPORT Terms terms(ElementaryFunctions& functions, Expression const& expression,
                        std::size_t count, unsigned most_digits = default_most_digits);

/// The convergents of those.
[[nodiscard]] ZELK_EXPORT std::vector<QNumber> convergents(
    ElementaryFunctions& functions, Expression const& expression, std::size_t count,
    unsigned most_digits = default_most_digits);

/// The best numbers with denominators up to `limit` in the place of the value, as those of the same
/// names in zelk/approx/best.h. Nothing if they are not the same for all of an interval, or if it
/// has been given up to tell, in enclosures with a width of 10^-most_digits / limit^2.
///
/// Throws: also std::domain_error unless limit is an integer from 1 on.
[[nodiscard]] ZELK_EXPORT std::optional<QNumber> best_below(
    ElementaryFunctions& functions, Expression const& expression, QNumber const& limit,
    unsigned most_digits = default_most_digits);
[[nodiscard]] ZELK_EXPORT std::optional<QNumber> best_above(
    ElementaryFunctions& functions, Expression const& expression, QNumber const& limit,
    unsigned most_digits = default_most_digits);
[[nodiscard]] ZELK_EXPORT std::optional<QNumber> best_nearest(
    ElementaryFunctions& functions, Expression const& expression, QNumber const& limit,
    unsigned most_digits = default_most_digits);

/// How the value, or all of an interval, compares with 0. Nothing if an interval holds numbers of
/// several signs, or if it has been given up to tell.
[[nodiscard]] ZELK_EXPORT std::optional<std::strong_ordering> sign(
    ElementaryFunctions& functions, Expression const& expression,
    unsigned most_digits = default_most_digits);

/// How a compares with b: the sign of a - b.
[[nodiscard]] ZELK_EXPORT std::optional<std::strong_ordering> compare(
    ElementaryFunctions& functions, Expression const& a, Expression const& b,
    unsigned most_digits = default_most_digits);

}  // namespace zelk::real
