#include "zelk/convert/decimal.h"

#include <gmp.h>

#include <cstddef>
#include <cstdlib>
#include <stdexcept>

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

/// An integer near q * 10^places, and whether it is that.
struct Scaled {
  Integer value;
  bool exact;
};

void scale(Scaled& scaled, QNumber const& q, long places, Rounding rounding) {
  Integer numerator(q.numerator().get());
  Integer denominator(q.denominator().get());
  Integer rest;
  mpz_ui_pow_ui(rest, 10, static_cast<unsigned long>(std::abs(places)));
  auto& factor = places < 0 ? denominator : numerator;
  mpz_mul(factor, factor, rest);
  mpz_fdiv_qr(scaled.value, rest, numerator, denominator);

  scaled.exact = mpz_sgn(rest.get()) == 0;
  bool upward = rounding == Rounding::up && !scaled.exact;
  if (rounding == Rounding::nearest) {
    mpz_mul_2exp(rest, rest, 1);
    int const side = mpz_cmp(rest, denominator);
    upward = side > 0 || (side == 0 && mpz_odd_p(scaled.value.get()) != 0);
  }
  if (upward) mpz_add_ui(scaled.value, scaled.value, 1);
}

Decimal rounded(QNumber const& q, unsigned places, Rounding rounding) {
  Scaled scaled;
  scale(scaled, q, places, rounding);
  return {with_point(scaled.value, places), scaled.exact};
}

Decimal rounded_scientific(QNumber const& q, unsigned digits, Rounding rounding) {
  if (digits == 0) throw std::invalid_argument("no significant digits");
  if (q.is_zero()) return {"0", true};
  auto const size = [](mpz_srcptr n) { return static_cast<long>(mpz_sizeinbase(n, 10)); };
  Integer limit;
  mpz_ui_pow_ui(limit, 10, digits);
  // From below: the sizes may be 1 too great. Rounding may make a digit more.
  Scaled scaled;
  for (long exponent = size(q.numerator()) - size(q.denominator()) - 2;; ++exponent) {
    scale(scaled, q, digits - 1L - exponent, rounding);
    if (mpz_cmpabs(scaled.value, limit) < 0)
      return {with_point(scaled.value, digits - 1) + 'e' + std::to_string(exponent), scaled.exact};
  }
}

/// Both ends rounded outward, by a function as above.
std::string outward(std::pair<QNumber, QNumber> const& enclosure, unsigned count,
                    decltype(rounded)& round) {
  auto const& [first, second] = enclosure;
  bool const descending = second < first;
  auto const lower = round(descending ? second : first, count, Rounding::down);
  auto const upper = round(descending ? first : second, count, Rounding::up);
  return (lower.exact ? "[=" : "[") + lower.text + (upper.exact ? ", =" : ", ") + upper.text + ']';
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
  return outward(enclosure, places, rounded);
}

std::string to_scientific(QNumber const& q, unsigned digits, Rounding rounding) {
  return rounded_scientific(q, digits, rounding).text;
}

std::string to_scientific(std::pair<QNumber, QNumber> const& enclosure, unsigned digits) {
  return outward(enclosure, digits, rounded_scientific);
}

}  // namespace zelk::convert
