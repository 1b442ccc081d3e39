#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <optional>

#include "zelk/numbers/integer.h"
#include "zelk/real/internal/chord.h"
#include "zelk/real/internal/constants.h"
#include "zelk/real/internal/fixed_functions.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/point_functions.h"

namespace zelk::real {

namespace {

using Exponents = std::array<long, Constants::primes.size()>;

/// Divides the primes out of a word and adds or subtracts their exponents. Returns whether nothing
/// is left. Requires: n >= 1.
bool factor(unsigned long n, long sign, Exponents& exponents) {
  int const twos = std::countr_zero(n);
  n >>= twos;
  exponents[0] += sign * twos;
  for (std::size_t i = 1; i < exponents.size(); ++i)
    for (; n % Constants::primes[i] == 0; n /= Constants::primes[i]) exponents[i] += sign;
  return n == 1;
}

/// The exponents of the primes whose powers make up x, if it is short and made of no others.
std::optional<Exponents> factor(QNumber const& x) {
  if (x.is_big()) return std::nullopt;
  Exponents exponents{};
  if (factor(static_cast<unsigned long>(x.small_numerator()), 1, exponents) &&
      factor(static_cast<unsigned long>(x.small_denominator()), -1, exponents))
    return exponents;
  return std::nullopt;
}

Interval log_of_product(Exponents const& exponents, long bits, Constants& constants) {
  // Two words have less than 128 factors in all, and each may lose 2 units.
  constexpr unsigned long error_bits = 8;
  long const precision = bits + 3 + static_cast<long>(error_bits);
  Integer sum, log;
  for (std::size_t i = 0; i < exponents.size(); ++i) {
    if (exponents[i] == 0) continue;
    constants.log_of_prime(log, i, static_cast<unsigned long>(precision));
    if (exponents[i] > 0)
      mpz_addmul_ui(sum, log, static_cast<unsigned long>(exponents[i]));
    else
      mpz_submul_ui(sum, log, static_cast<unsigned long>(-exponents[i]));
  }
  return enclosure(sum, error_bits, precision, bits);
}

}  // namespace

Interval log_at(QNumber const& x, long bits, Constants& constants) {
  if (x == QNumber(1)) return QNumber();
  bits = std::max(bits, 0L);
  if (auto const exponents = factor(x)) return log_of_product(*exponents, bits, constants);

  mp_size_t const n = limbs_for(static_cast<unsigned long>(bits) + 3);
  long const precision = n * GMP_NUMB_BITS;
  // x = m 2^exponent with 1/2 < m < 2
  long exponent = magnitude(x) - 1;
  Integer m, log2;
  floor_scaled(m, x, precision - exponent);
  // 4/3 <= m < 8/3; what was cut off grows to at most 4 units.
  mpz_mul_ui(log2, m, 3);
  if (auto const places = static_cast<unsigned long>(precision) + 3 - mpz_sizeinbase(log2, 2);
      static_cast<long>(places) > 0) {
    mpz_mul_2exp(m, m, places);
    exponent -= static_cast<long>(places);
  }
  log_fixed(m, m, n);
  if (exponent != 0) {
    auto const size =
        static_cast<unsigned long>(std::bit_width(static_cast<unsigned long>(std::abs(exponent))));
    constants.log2(log2, static_cast<unsigned long>(precision) + size);
    mpz_mul_si(log2, log2, exponent);
    mpz_fdiv_q_2exp(log2, log2, size);
    mpz_add(m, m, log2);
  }
  return enclosure(m, chord_error_bits(n) + function_error_bits, precision, bits);
}

}  // namespace zelk::real
