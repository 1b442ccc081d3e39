#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <variant>

#include "zelk/real/elementary_functions.h"
#include "zelk/real/enclose.h"
#include "zelk/real/errors.h"
#include "zelk/real/expression.h"
#include "zelk/real/internal/evaluation.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/limit.h"
#include "zelk/real/internal/precision.h"

namespace zelk::real {

/// An n such that |q| < 10^n, the least or one or two more, or a few beyond 10^9 bits. Requires: q
/// is not 0.
inline long decimal_magnitude(QNumber const& q) {
  // log10 2 lies between these over 10^9, and rounding toward 0 is made up for by 1.
  long const bits = magnitude(q);
  return bits * (bits < 0 ? 301029995 : 301029996) / 1000000000 + 1;
}

/// Whether so wide an enclosure is one to give up.
inline bool is_hopeless(QNumber const& width, unsigned long most_digits) {
  return width.is_zero() || decimal_magnitude(width) <= -static_cast<long>(most_digits);
}

[[noreturn]] inline void give_up(Undecided const& undecided, unsigned most_digits) {
  auto const reason =
      undecided.reason + ", perhaps: " + std::to_string(most_digits) + " digits do not tell";
  if (undecided.is_length) throw TooLong(reason);
  throw NotDecided(reason);
}

/// Evaluates the expression ever more precisely, first for an error of 10^-digits, until `judge`
/// is content. That is a function of the value and its signs, which says how many digits are
/// missing, as far as it knows, or nothing. What is certainly not 0, and yet looks as if it might
/// be, is told from it by significant digits of all parts, unless it begins with more zeros than
/// can be afforded: then that is all that is known of the value.
///
/// Where `steps` are asked for, they become those of the last evaluation.
///
/// Throws: also NotDecided if it is given up to tell whether an operation is defined, or TooLong
/// whether it is short enough, or if what is divided by is too near to 0.
template <class Judge>
void refine(ElementaryFunctions& functions, Expression const& expression, unsigned long digits,
            unsigned most_digits, Judge const& judge, Steps* steps = nullptr) {
  // However many they are, the errors add up to less than 10^-digits, unless they are magnified.
  digits += 3 + std::to_string(expression.postfix().size()).size();
  for (bool keep_zeros = false;;) {
    if (steps != nullptr) steps->digits = static_cast<unsigned>(digits);
    auto const result = evaluate(expression, Precision(functions, digits, keep_zeros),
                                 steps != nullptr ? &steps->parts : nullptr);
    std::optional<unsigned long> missing = 0;
    bool is_certainly_not_0 = false;
    QNumber width;  // of what is unknown
    if (auto const* undecided = std::get_if<Undecided>(&result)) {
      is_certainly_not_0 = undecided->is_blurred;
      width = undecided->width;
      if (!is_certainly_not_0 && is_hopeless(width, most_digits)) give_up(*undecided, most_digits);
    } else {
      auto const& [value, signs] = std::get<Evaluated>(result);
      missing = judge(value, signs);
      if (!missing) return;
      is_certainly_not_0 = is_blurred(signs, value.outer());
      width = value.unknown_width();
    }
    if (is_certainly_not_0) {
      if (!keep_zeros) {
        keep_zeros = true;
        continue;
      }
      if (is_hopeless(width, most_digits)) {
        if (std::holds_alternative<Undecided>(result)) throw TooLong(beyond_limit);
        return;
      }
    }
    digits += std::max(*missing, digits / 2);
  }
}

}  // namespace zelk::real
