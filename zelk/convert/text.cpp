#include "zelk/convert/text.h"

#include <gmp.h>

#include <algorithm>
#include <cstdlib>

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
    auto const end = std::min(text.find_first_not_of("0123456789", position), text.size());
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

/// Requires: `digits` holds decimal digits only, at least one.
void assign(Integer& n, std::string const& digits) { mpz_set_str(n, digits.c_str(), 10); }

void append(std::string& text, mpz_srcptr n) {
  auto const start = text.size();
  text.resize(start + mpz_sizeinbase(n, 10) + 2);  // a sign and the terminating NUL
  mpz_get_str(text.data() + start, 10, n);
  text.resize(text.find('\0', start));
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

  Integer numerator;
  Integer denominator;
  Integer power;
  assign(numerator, digits);
  assign(denominator, divisor);
  mpz_ui_pow_ui(power, 10, static_cast<unsigned long>(std::labs(scale)));
  auto& scaled = scale < 0 ? denominator : numerator;
  mpz_mul(scaled, scaled, power);
  if (negative) mpz_neg(numerator, numerator);
  return QNumber::from_mpz(numerator, denominator);
}

std::string to_string(QNumber const& q) {
  std::string text;
  append(text, q.numerator());
  if (!q.is_integer()) {
    text += '/';
    append(text, q.denominator());
  }
  return text;
}

}  // namespace zelk::convert
