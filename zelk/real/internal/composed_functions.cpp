#include "zelk/real/internal/composed_functions.h"

#include <algorithm>
#include <optional>

#include "zelk/numbers/functions.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/outward.h"
#include "zelk/real/internal/point_functions.h"

namespace zelk::real {

namespace {

bool is_narrow(Interval const& x, long bits) {
  return !(dyadic(IntegerView(1L), bits) < x.width());
}

long bits_of(QNumber const& q) {
  return static_cast<long>(mpz_sizeinbase(q.numerator(), 2) + mpz_sizeinbase(q.denominator(), 2));
}

/// atan of the root of a square, which is at most 2^-bits wide.
Interval atan_of_root(QNumber const& square, long bits, Constants& constants) {
  auto const root = root_at(square, 2, bits + 2, constants);
  auto const angle = atan_at(root.lower(), bits + 2, constants);
  // The slope of atan is at most 1.
  return {angle.lower(), angle.upper() + root.width()};
}

/// The exponent of a power of `base` that is worth being computed exactly.
std::optional<long> small_exponent(QNumber const& base, QNumber const& exponent, long bits) {
  long const room = std::max(4096L, 4 * bits) / bits_of(base);
  if (QNumber(room) < abs(exponent)) return std::nullopt;
  return exponent.to_small().small_numerator();
}

/// e^(y log x).
Interval pow_by_logarithm(QNumber const& x, QNumber const& y, long bits, Constants& constants) {
  // The error of y log x times x^y; and below 1 in any case.
  long const relative_bits = std::max(0L, bits + exponent_of_pow(x, y, constants));
  for (long more = 6;; more *= 2) {
    auto const log = log_at(x, std::max(0L, relative_bits + magnitude(y)) + more, constants);
    auto const exponent = y * log;
    Interval power(exp_at(exponent.lower(), bits + 2, constants).lower(),
                   exp_at(exponent.upper(), bits + 2, constants).upper());
    if (is_narrow(power, bits)) return power;
  }
}

}  // namespace

Interval tan_at(QNumber const& x, long bits, Constants& constants) {
  if (x.is_zero()) return 0;
  for (long working_bits = std::max(0L, bits) + 6;;) {
    auto cos = cos_at(x, working_bits, constants);
    if (cos.sign() == 0) {
      working_bits *= 2;
      continue;
    }
    auto sin = sin_at(x, working_bits, constants);
    if (cos.sign() < 0) {
      cos = -cos;
      sin = -sin;
    }
    auto tan = quotient_outward(sin, cos, bits + 2);
    if (is_narrow(tan, bits)) return tan;
    // The slope of the tangent is 1/cos^2.
    working_bits += 2 - 2 * std::min(0L, magnitude(cos.lower()) - 2);
  }
}

Interval asin_at(QNumber const& x, long bits, Constants& constants) {
  if (x.is_zero()) return 0;
  if (x.sign() < 0) return -asin_at(-x, bits, constants);
  if (x == 1) return pi_at(bits, constants) / 2;
  auto const square = x * x;
  return atan_of_root(square / (1 - square), bits, constants);
}

Interval acos_at(QNumber const& x, long bits, Constants& constants) {
  if (x == 1) return 0;
  if (x == -1) return pi_at(bits, constants);
  return 2 * atan_of_root((1 - x) / (1 + x), bits + 1, constants);
}

Interval sinh_at(QNumber const& x, long bits, Constants& constants) {
  if (x.is_zero()) return 0;
  return (exp_at(x, bits + 1, constants) - exp_at(-x, bits + 1, constants)) / 2;
}

Interval cosh_at(QNumber const& x, long bits, Constants& constants) {
  if (x.is_zero()) return 1;
  return (exp_at(x, bits + 1, constants) + exp_at(-x, bits + 1, constants)) / 2;
}

Interval tanh_at(QNumber const& x, long bits, Constants& constants) {
  if (x.is_zero()) return 0;
  if (x.sign() < 0) return -tanh_at(-x, bits, constants);
  // (1 - y)/(1 + y) for y = e^-2x, whose slope is at most 2.
  auto const y = exp_at(-2 * x, bits + 3, constants);
  return quotient_outward(1 - y, 1 + y, bits + 3);
}

Interval pow_at(QNumber const& x, QNumber const& y, long bits, Constants& constants) {
  if (y.is_zero() || x == 1) return 1;
  auto const numerator = zelk::numerator(y);
  auto const degree = zelk::denominator(y);
  // Of that length is any answer.
  long const length = bits + std::max(0L, exponent_of_pow(x, y, constants));
  // Of irreducible p/q, x^(p/q) is rational only if x is the q-th power of a rational.
  if (auto const root = rational_root(x, degree)) {
    if (auto const exponent = small_exponent(*root, numerator, length))
      return zelk::pow(*root, *exponent);
  } else if (auto const small_degree = small_exponent(x, degree, length)) {
    if (auto const exponent = small_exponent(x, numerator, length))
      return root_at(zelk::pow(x, *exponent), static_cast<unsigned long>(*small_degree), bits,
                     constants);
  }
  return pow_by_logarithm(x, y, bits, constants);
}

long exponent_of_exp(QNumber const& x) {
  static QNumber const log2_e(6653256548922161246, 1L << 62);  // nearly
  static QNumber const bound(1L << 62);
  auto const exponent = floor(x * log2_e);
  if (bound < exponent) return 1L << 62;
  if (exponent < -bound) return -(1L << 62);
  return exponent.to_small().small_numerator();
}

long exponent_of_pow(QNumber const& x, QNumber const& y, Constants& constants) {
  auto const log = log_at(x, 64 + std::max(0L, magnitude(y)), constants);
  return exponent_of_exp(y * log.lower());
}

}  // namespace zelk::real
