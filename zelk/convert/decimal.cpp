#include "zelk/convert/decimal.h"

#include <gmp.h>

#include <cstddef>

#include "zelk/convert/text.h"
#include "zelk/numbers/integer.h"
#include "zelk/numbers/integer_view.h"

namespace zelk::convert {
namespace {

struct Decimal {
  std::string text;
  bool exact;
};

/// n * 10^-places.
std::string with_point(mpz_srcptr n, std::size_t places) {
  auto text = to_string(QNumber::from_mpz(n, IntegerView(1)));
  if (places == 0) return text;
  std::size_t const sign = text.starts_with('-') ? 1 : 0;
  auto const digits = text.size() - sign;
  if (digits <= places) text.insert(sign, places + 1 - digits, '0');
  text.insert(text.size() - places, 1, '.');
  return text;
}

Decimal rounded(QNumber const& q, unsigned places, Rounding rounding) {
  auto const denominator = q.denominator();
  Integer scaled;
  Integer rest;
  mpz_ui_pow_ui(scaled, 10, places);
  mpz_mul(scaled, scaled, q.numerator());
  mpz_fdiv_qr(scaled, rest, scaled, denominator);

  bool const exact = mpz_sgn(rest) == 0;
  bool upward = rounding == Rounding::up && !exact;
  if (rounding == Rounding::nearest) {
    mpz_mul_2exp(rest, rest, 1);
    int const side = mpz_cmp(rest, denominator);
    upward = side > 0 || (side == 0 && mpz_odd_p(scaled) != 0);
  }
  if (upward) mpz_add_ui(scaled, scaled, 1);
  return {with_point(scaled, places), exact};
}

}  // namespace

std::string to_decimal(QNumber const& q, unsigned places, Rounding rounding) {
  return rounded(q, places, rounding).text;
}

bool is_decimal(QNumber const& q, unsigned places) {
  // 10^places is a multiple of the denominator.
  Integer rest(q.denominator());
  Integer const five(5UL);
  auto const twos = mpz_scan1(rest, 0);
  mpz_fdiv_q_2exp(rest, rest, twos);
  auto const fives = mpz_remove(rest, rest, five);
  return twos <= places && fives <= places && mpz_cmp_ui(rest, 1) == 0;
}

std::string to_decimal(std::pair<QNumber, QNumber> const& enclosure, unsigned places) {
  auto const& [first, second] = enclosure;
  bool const descending = second < first;
  auto const lower = rounded(descending ? second : first, places, Rounding::down);
  auto const upper = rounded(descending ? first : second, places, Rounding::up);
  return (lower.exact ? "[=" : "[") + lower.text + (upper.exact ? ", =" : ", ") + upper.text + ']';
}

}  // namespace zelk::convert
