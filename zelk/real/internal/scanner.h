#pragma once

#include <cstddef>
#include <string_view>

#include "zelk/numbers/q_number.h"
#include "zelk/real/interval.h"

namespace zelk::real {

/// Reads the text of an expression from left to right; what does not fit is refused where it
/// stands. Blanks before anything are skipped.
class Scanner {
 public:
  explicit Scanner(std::string_view input) : text(input) {}

  /// Where the next symbol begins, counted from 0.
  std::size_t place();

  /// The next symbol; 0 at the end, and for a byte 0.
  char next() { return place() < text.size() ? text[position] : '\0'; }
  bool is_at_end() { return place() == text.size(); }

  bool accept(char symbol);
  bool is_at_number();
  bool is_at_name();

  /// Letters and digits. Requires: is_at_name().
  std::string_view name();

  /// A decimal without a sign: 12, .5, 5. or 1e-3.
  QNumber number();

  /// What follows `[`, from `place` on: two signed decimals or fractions.
  Interval interval(std::size_t place);

  [[noreturn]] void refuse(std::size_t place, std::string_view reason) const;

 private:
  bool is_digit(std::size_t place) const;
  void skip_digits();
  QNumber signed_fraction();
  void expect(char symbol, std::string_view reason);

  std::string_view text;
  std::size_t position = 0;
  long exponents = 0;  // the sum of their magnitudes
};

}  // namespace zelk::real
