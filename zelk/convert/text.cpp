#include "zelk/convert/text.h"

#include <gmp.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <limits>

#include "zelk/convert/internal/long_text.h"
#include "zelk/numbers/integer.h"

namespace zelk::convert {
namespace {

std::string printable(std::string_view text) {
  constexpr char hex[] = "0123456789abcdef";
  std::string result;
  for (char const c : text) {
    if (c >= ' ' && c <= '~') {
      result += c;
    } else {
      auto const byte = static_cast<unsigned char>(c);
      result += {'\\', 'x', hex[byte / 16], hex[byte % 16]};
    }
  }
  return result;
}

/// All of a short text; of a long one the surroundings of `column`.
std::string excerpt(std::string_view text, std::size_t column) {
  constexpr std::size_t reach = 32;
  if (text.size() <= 2 * reach) return printable(text);
  auto const first = column - 1 - std::min(column - 1, reach);
  auto const shown = text.substr(first, 2 * reach);
  return (first > 0 ? "..." : "") + printable(shown) +
         (first + shown.size() < text.size() ? "..." : "");
}

bool is_digit(char c) { return '0' <= c && c <= '9'; }

/// Reads a text from left to right; what does not fit is refused where it stands.
class Scanner {
 public:
  explicit Scanner(std::string_view input) : text(input) {}

  bool accept(char c) {
    bool const found = position < text.size() && text[position] == c;
    position += found;
    return found;
  }

  std::string_view digits() {
    auto end = position;
    while (end < text.size() && is_digit(text[end])) ++end;
    if (end == position) refuse(position, "expected a digit");
    auto const found = text.substr(position, end - position);
    position = end;
    return found;
  }

  std::string_view nonzero_digits() {
    auto const start = position;
    auto const found = digits();
    if (found.find_first_not_of('0') == std::string_view::npos) refuse(start, "zero denominator");
    return found;
  }

  long exponent() {
    bool const negative = accept('-');
    if (!negative) accept('+');
    auto const start = position;
    long magnitude = 0;
    // Saturating just beyond the limit keeps any number of digits from overflowing.
    for (char const c : digits())
      magnitude = std::min(10 * magnitude + (c - '0'), max_decimal_exponent + 1);
    if (magnitude > max_decimal_exponent)
      refuse(start, "the exponent is beyond " + std::to_string(max_decimal_exponent));
    return negative ? -magnitude : magnitude;
  }

  void expect_end() const {
    if (position < text.size()) refuse(position, "unexpected character");
  }

 private:
  [[noreturn]] void refuse(std::size_t where, std::string_view reason) const {
    throw ParseError(text, where + 1, reason);
  }

  std::string_view text;
  std::size_t position = 0;
};

/// So many digits always fit a word.
constexpr std::size_t digits_of_word = std::numeric_limits<long>::digits10;

/// Whether it is certain that `digits` and `zeros` after them do. Less than 0 zeros are none.
bool fits_word(std::string_view digits, long zeros) {
  return digits.size() <= digits_of_word &&
         zeros <= static_cast<long>(digits_of_word - digits.size());
}

/// The number that they make.
long to_word(std::string_view digits, long zeros) {
  long n = 0;
  for (char const c : digits) n = 10 * n + (c - '0');
  for (; zeros > 0; --zeros) n *= 10;
  return n;
}

void append(std::string& text, long n) {
  char digits[digits_of_word + 2];  // one more, and a sign
  text.append(digits, std::to_chars(digits, std::end(digits), n).ptr);
}

}  // namespace

std::string quoted(std::string_view text, std::size_t column) {
  return '"' + excerpt(text, column) + '"';
}

ParseError::ParseError(std::string_view text, std::size_t column, std::string_view reason)
    : std::invalid_argument(quoted(text, column) + ": column " + std::to_string(column) + ": " +
                            std::string(reason)),
      offending_column(column),
      reason_length(reason.size()) {}

QNumber parse_rational(std::string_view text) {
  Scanner scanner(text);
  bool const negative = scanner.accept('-');
  std::string digits(scanner.digits());
  std::string divisor = "1";
  long scale = 0;  // the power of ten that the decimal point and the exponent add up to
  if (scanner.accept('/')) {
    divisor = scanner.nonzero_digits();
  } else {
    if (scanner.accept('.')) {
      auto const fraction = scanner.digits();
      digits += fraction;
      scale -= static_cast<long>(fraction.size());
    }
    if (scanner.accept('e') || scanner.accept('E')) scale += scanner.exponent();
  }
  scanner.expect_end();

  if (fits_word(digits, scale) && fits_word(divisor, -scale)) {
    long const n = to_word(digits, scale);
    return {negative ? -n : n, to_word(divisor, -scale)};
  }
  Integer numerator;
  Integer denominator;
  Integer power;
  assign_digits(numerator, digits);
  assign_digits(denominator, divisor);
  mpz_ui_pow_ui(power, 10, static_cast<unsigned long>(std::labs(scale)));
  auto& scaled = scale < 0 ? denominator : numerator;
  mpz_mul(scaled, scaled, power);
  if (negative) mpz_neg(numerator, numerator);
  return QNumber::from_mpz(numerator, denominator);
}

std::string to_string(QNumber const& q) {
  std::string text;
  if (q.is_big())
    append_digits(text, q.numerator());
  else
    append(text, q.small_numerator());
  if (q.is_integer()) return text;
  text += '/';
  if (q.is_big())
    append_digits(text, q.denominator());
  else
    append(text, q.small_denominator());
  return text;
}

}  // namespace zelk::convert
