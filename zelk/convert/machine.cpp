#include "zelk/convert/machine.h"

#include <gmp.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "zelk/numbers/integer.h"

namespace zelk::convert {
namespace {

using Limits = std::numeric_limits<double>;
static_assert(Limits::is_iec559 && Limits::digits == 53 && sizeof(double) == 8);

// A finite magnitude is significand * 2^exponent, the significand an integer below 2^53 and, unless
// the exponent is the least, not below 2^52. The pattern of its bits is then, as an integer,
// significand + (exponent - least_exponent) * 2^52, and that of infinity follows the greatest.
constexpr long least_exponent = Limits::min_exponent - Limits::digits;
constexpr long greatest_exponent = Limits::max_exponent - Limits::digits;
constexpr int stored_bits = Limits::digits - 1;
constexpr std::uint64_t leading_bit = std::uint64_t{1} << stored_bits;
constexpr std::uint64_t infinity = std::bit_cast<std::uint64_t>(Limits::infinity());
constexpr std::uint64_t sign_bit = std::uint64_t{1} << 63;

struct Magnitude {
  std::uint64_t significand;
  long exponent;
};

/// |q|, truncated to an integer of at most 57 bits times a power of two. The last bit is sticky: it
/// is set as well when anything was cut off. At least two bits more than a double holds are kept,
/// so rounding these bits gives what rounding |q| itself would.
Magnitude cut(QNumber const& q) {
  Integer n(q.numerator());
  Integer d(q.denominator());
  mpz_abs(n, n);
  // |q| has its leading bit at `length` or one below.
  auto const length =
      static_cast<long>(mpz_sizeinbase(n, 2)) - static_cast<long>(mpz_sizeinbase(d, 2));
  auto const exponent = std::max(length - Limits::digits - 3, least_exponent - 2);
  auto& scaled = exponent < 0 ? n : d;
  mpz_mul_2exp(scaled, scaled, static_cast<mp_bitcnt_t>(exponent < 0 ? -exponent : exponent));
  mpz_tdiv_qr(n, d, n, d);
  return {mpz_get_ui(n) | static_cast<std::uint64_t>(mpz_sgn(d) != 0), exponent};
}

}  // namespace

double to_double(QNumber const& q, Rounding rounding) {
  if (q.is_zero()) return 0.0;
  bool const negative = q.sign() < 0;
  bool const outward = rounding == (negative ? Rounding::down : Rounding::up);
  bool const nearest = rounding == Rounding::nearest;

  auto [bits, exponent] = cut(q);
  int const excess = std::max(static_cast<int>(std::bit_width(bits)) - Limits::digits, 2);
  auto const half = std::uint64_t{1} << (excess - 1);
  auto const tail = bits & (2 * half - 1);
  bits >>= excess;
  exponent += excess;

  if (exponent > greatest_exponent) {
    bits = outward || nearest ? infinity : infinity - 1;
  } else {
    bool const odd = bits % 2 != 0;
    bits += static_cast<std::uint64_t>(exponent - least_exponent) << stored_bits;
    // A carry out of the significand moves on into the exponent, at last into infinity.
    if (nearest ? tail > half || (tail == half && odd) : outward && tail != 0) ++bits;
  }
  return std::bit_cast<double>(negative ? bits | sign_bit : bits);
}

std::pair<double, double> enclosing_doubles(QNumber const& q) {
  return {to_double(q, Rounding::down), to_double(q, Rounding::up)};
}

QNumber from_double(double x) {
  auto const bits = std::bit_cast<std::uint64_t>(x);
  auto const magnitude = bits & ~sign_bit;
  if (magnitude >= infinity)
    throw std::invalid_argument(magnitude == infinity ? "an infinity is not a rational number"
                                                      : "a NaN is not a rational number");
  auto const field = static_cast<long>(magnitude >> stored_bits);
  Integer n((magnitude & (leading_bit - 1)) + (field > 0 ? leading_bit : 0));
  Integer d(1UL);
  auto const exponent = std::max(field, 1L) - 1 + least_exponent;
  auto& scaled = exponent < 0 ? d : n;
  mpz_mul_2exp(scaled, scaled, static_cast<mp_bitcnt_t>(exponent < 0 ? -exponent : exponent));
  if (bits != magnitude) mpz_neg(n, n);
  return QNumber::from_mpz(n, d);
}

}  // namespace zelk::convert
