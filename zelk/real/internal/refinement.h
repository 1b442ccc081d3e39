#pragma once

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>

#include "zelk/real/elementary_functions.h"
#include "zelk/real/enclose.h"
#include "zelk/real/expression.h"
#include "zelk/real/internal/evaluation.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/precision.h"

namespace zelk::real {

/// An n such that |q| < 10^n, the least or one or two more. Requires: q is not 0.
inline long decimal_magnitude(QNumber const& q) {
  // log10 2 is a little less than 0.30103, and rounding toward 0 is made up for by 1.
  return magnitude(q) * 30103 / 100000 + 1;
}

/// Whether so wide an enclosure is one to give up.
inline bool is_hopeless(QNumber const& width, unsigned long most_digits) {
  return width.is_zero() || decimal_magnitude(width) <= -static_cast<long>(most_digits);
}

/// Evaluates the expression ever more precisely, first for an error of 10^-digits, until `judge`
/// is content. That is a function of the value, which says how many digits are missing, as far as
/// it knows, or nothing.
///
/// Where `steps` are asked for, they become those of the last evaluation.
///
/// Throws: also std::domain_error if it is given up to tell whether an operation is defined.
template <class Judge>
void refine(ElementaryFunctions& functions, Expression const& expression, unsigned long digits,
            unsigned most_digits, Judge const& judge, Steps* steps = nullptr) {
  // However many they are, the errors add up to less than 10^-digits, unless they are magnified.
  digits += 3 + std::to_string(expression.postfix().size()).size();
  for (;;) {
    if (steps != nullptr) steps->digits = static_cast<unsigned>(digits);
    auto const result = evaluate(expression, Precision(functions, digits),
                                 steps != nullptr ? &steps->parts : nullptr);
    std::optional<unsigned long> missing = 0;
    if (auto const* undecided = std::get_if<Undecided>(&result)) {
      if (is_hopeless(undecided->width, most_digits))
        throw std::domain_error(undecided->reason + ", perhaps: " + std::to_string(most_digits) +
                                " digits do not tell");
    } else {
      missing = judge(std::get<Value>(result));
    }
    if (!missing) return;
    digits += std::max(*missing, digits / 2);
  }
}

}  // namespace zelk::real
