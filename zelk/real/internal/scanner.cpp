#include "zelk/real/internal/scanner.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <utility>

#include "zelk/convert/text.h"
#include "zelk/real/parse.h"

namespace zelk::real {

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view digits = "0123456789";
constexpr std::string_view name_characters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz0123456789";

}  // namespace

std::size_t Scanner::place() {
  return position = std::min(text.find_first_not_of(blanks, position), text.size());
}

bool Scanner::accept(char symbol) {
  bool const found = !is_at_end() && text[position] == symbol;
  position += found;
  return found;
}

bool Scanner::is_digit(std::size_t place) const {
  return place < text.size() && digits.find(text[place]) != std::string_view::npos;
}

bool Scanner::is_at_number() { return is_digit(place()) || text.substr(position, 1) == "."; }

bool Scanner::is_at_name() {
  return !is_at_end() && !is_digit(position) &&
         name_characters.find(text[position]) != std::string_view::npos;
}

std::string_view Scanner::name() {
  auto const start = place();
  position = std::min(text.find_first_not_of(name_characters, start), text.size());
  return text.substr(start, position - start);
}

void Scanner::skip_digits() {
  position = std::min(text.find_first_not_of(digits, position), text.size());
}

QNumber Scanner::number() {
  auto const start = place();
  if (!is_at_number()) refuse(start, "expected a number");
  skip_digits();
  std::string decimal(text.substr(start, position - start));
  if (text.substr(position, 1) == ".") {
    auto const point = position++;
    skip_digits();
    bool const has_places = position > point + 1;
    if (!has_places && decimal.empty()) refuse(point + 1, "expected a digit");
    // Either side of the point may be empty here.
    if (decimal.empty()) decimal = "0";
    if (has_places) decimal += text.substr(point, position - point);
  }

  auto const letter = position;
  auto first_digit = letter + 1;
  if (text.substr(letter, 1).find_first_of("eE") == 0) {
    if (text.substr(first_digit, 1).find_first_of("+-") == 0) ++first_digit;
    if (is_digit(first_digit)) {  // otherwise a name begins, which is refused as such
      position = first_digit;
      skip_digits();
      decimal += text.substr(letter, position - letter);
      long magnitude = max_decimal_exponents;
      std::from_chars(text.data() + first_digit, text.data() + position, magnitude);
      exponents = std::min(exponents + std::min(magnitude, max_decimal_exponents),
                           max_decimal_exponents + 1);
    }
  }
  try {
    auto number = convert::parse_rational(decimal);
    if (exponents > max_decimal_exponents)
      refuse(first_digit,
             "the exponents add up to more than " + std::to_string(max_decimal_exponents));
    return number;
  } catch (convert::ParseError const& error) {
    refuse(first_digit, error.reason());  // nothing else is left to be wrong
  }
}

QNumber Scanner::signed_fraction() {
  bool const is_negative = accept('-');
  if (!is_negative) accept('+');
  auto value = number();
  if (accept('/')) {
    auto const start = place();
    auto const divisor = number();
    if (divisor.is_zero()) refuse(start, "zero denominator");
    value /= divisor;
  }
  return is_negative ? -value : value;
}

void Scanner::expect(char symbol, std::string_view reason) {
  if (!accept(symbol)) refuse(place(), reason);
}

Interval Scanner::interval(std::size_t place) {
  auto lower = signed_fraction();
  expect(',', "expected a comma between the ends of an interval");
  auto upper = signed_fraction();
  expect(']', "expected ] after the ends of an interval");
  if (upper < lower) refuse(place, "the lower end of an interval is above its upper end");
  return {std::move(lower), std::move(upper)};
}

void Scanner::refuse(std::size_t place, std::string_view reason) const {
  throw convert::ParseError(text, place + 1, reason);
}

}  // namespace zelk::real
