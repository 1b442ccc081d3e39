#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "zelk/config.h"
#include "zelk/numbers/q_number.h"

/// Values in and out of the library.
namespace zelk::convert {

/// The largest magnitude of a decimal exponent: a handful of characters must not be able to ask for
/// an unbounded amount of memory.
inline constexpr long max_decimal_exponent = 1'000'000;

/// A text as messages show it: in quotes, of a long one only the surroundings of `column`,
/// unprintable bytes as `\x..`. Requires: 1 <= column <= text.size() + 1. Cost: constant.
[[nodiscard]] ZELK_EXPORT std::string quoted(std::string_view text, std::size_t column = 1);

/// The refusal of a text that is not a rational. `what()` names the text (shortened when long, its
/// unprintable bytes written as `\x..`), the column and the reason: `"1/-2": column 3: expected a
/// digit`.
class ZELK_EXPORT ParseError : public std::invalid_argument {
 public:
  /// `column` counts bytes from 1; it is one past the end of `text` where text is missing, and
  /// must not lie beyond that.
  ParseError(std::string_view text, std::size_t column, std::string_view reason);

  /// The byte of the text, counted from 1, at which it was refused.
  std::size_t column() const noexcept { return offending_column; }

  /// The reason alone, good as long as this object.
  std::string_view reason() const noexcept {
    std::string_view const all = what();
    return all.substr(all.size() - reason_length);
  }

 private:
  std::size_t offending_column;
  std::size_t reason_length;
};

/// The exact value of a fraction or a decimal of any length.
///
///     rational = ["-"] digits ( "/" digits | ["." digits] [exponent] )
///     exponent = ("e" | "E") ["+" | "-"] digits
///     digits   = one or more of "0" .. "9"
///
/// Everything else is refused, blanks included, and so are a zero denominator and an exponent
/// beyond `max_decimal_exponent` in magnitude.
///
/// Cost: subquadratic in the length of the text and the magnitude of the exponent, memory linear.
/// Throws: ParseError at the first offending column.
ZELK_EXPORT QNumber parse_rational(std::string_view text);

/// `q` in lowest terms with a positive denominator, as in `25/18`, `-7/2`, `12`; `parse_rational`
/// reads it back.
///
/// Cost: subquadratic in the length of the result.
[[nodiscard]] ZELK_EXPORT std::string to_string(QNumber const& q);

}  // namespace zelk::convert
