#include "zelk/convert/text.h"

#include <gmpxx.h>

#include <cstdlib>
#include <optional>
#include <regex>
#include <string>

#include "tests/fuzz/body.h"
#include "tests/support/random_number.h"

namespace zelk::test {
namespace {

std::optional<QNumber> parsed(std::string const& text) {
  try {
    return convert::parse_rational(text);
  } catch (convert::ParseError const& error) {
    CHECK(error.column() >= 1 && error.column() <= text.size() + 1);
    return std::nullopt;
  }
}

}  // namespace

void run_text(Bytes bytes) {
  if (bytes.size() > 300) return;  // the regular expression recurs
  std::string const text(bytes.begin(), bytes.end());
  auto const q = parsed(text);

  static std::regex const rational("-?([0-9]+)(/([0-9]+)|(\\.([0-9]+))?([eE]([+-]?[0-9]+))?)");
  std::smatch part;
  bool const matches = std::regex_match(text, part, rational);
  CHECK(matches || !q);
  if (!matches) return;
  mpz_class const below(part[3].matched ? part[3].str() : "1", 10);
  std::string const power_of_ten = part[7].matched ? part[7].str() : "0";
  mpz_class const exponent(power_of_ten.substr(power_of_ten[0] == '+' ? 1 : 0), 10);
  CHECK(q.has_value() == (below != 0 && abs(exponent) <= convert::max_decimal_exponent));
  if (!q || abs(exponent) > 5000) return;  // right, but too slow to look at in thousands

  mpq_class value(mpz_class(part[1].str() + part[5].str(), 10), below);
  value.canonicalize();
  long const scale = exponent.get_si() - part[5].length();
  mpz_class power;
  mpz_ui_pow_ui(power.get_mpz_t(), 10, static_cast<unsigned long>(std::labs(scale)));
  value = scale < 0 ? mpq_class(value / power) : mpq_class(value * power);
  if (text[0] == '-') value = -value;
  CHECK(to_rational(*q).get_str() == value.get_str());
  CHECK(convert::to_string(*q) == value.get_str());
  CHECK(convert::to_string(to_number(value, true)) == value.get_str());
  auto const again = parsed(value.get_str());
  CHECK(again && *again == *q && again->is_big() == q->is_big());
}

}  // namespace zelk::test
