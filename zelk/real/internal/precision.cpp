#include "zelk/real/internal/precision.h"

#include <climits>
#include <limits>

#include "zelk/numbers/functions.h"
#include "zelk/real/errors.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/limit.h"
#include "zelk/real/internal/outward.h"

namespace zelk::real {

namespace {

constexpr double room_for_products = 8;

// Numbers of a million bits, and beyond that such as are no longer than what precision takes.
constexpr double always_short = 1 << 20;
constexpr double short_for_precision = 16;

double size_of(QNumber const& q) {
  return static_cast<double>(mpz_sizeinbase(q.numerator(), 2) + mpz_sizeinbase(q.denominator(), 2));
}

double bits_of_digits(unsigned long digits) { return 3.32193 * static_cast<double>(digits) + 2; }

}  // namespace

double size_of(Interval const& x) { return std::max(size_of(x.lower()), size_of(x.upper())); }

double size_of(Value const& x) {
  double const size = size_of(x.lower_end());
  return x.is_number() ? size : std::max(size, size_of(x.upper_end()));
}

Precision::Precision(ElementaryFunctions& functions, unsigned long wanted, bool keep_zeros)
    : answers(&functions), digits(static_cast<unsigned>(wanted)), are_zeros_kept(keep_zeros) {
  require_digits(functions, wanted);
  double const wanted_bits = bits_of_digits(wanted);
  bits = static_cast<long>(wanted_bits);
  unit = zelk::pow(10, -static_cast<long>(wanted));
  double const room = functions.max_bits() / room_for_products;
  exact_bits = std::min(room, std::max(always_short, short_for_precision * wanted_bits));
  most_zeros = keep_zeros ? room : exact_bits;
}

void Precision::require_digits(ElementaryFunctions const& functions, unsigned long digits) {
  if (digits > std::numeric_limits<unsigned>::max() / 2)
    throw TooLong("more digits are needed than can be counted");
  real::require_room(bits_of_digits(digits), functions.max_bits());
}

void Precision::require_room(ElementaryFunctions const& functions, double result_bits) {
  real::require_room(result_bits, functions.max_bits(), room_for_products);
}

/// Outward, to `bits` bits below the magnitude of x, or below 2^least_magnitude if that is greater.
Interval Precision::rounded(Interval const& x, long least_magnitude) const {
  if (size_of(x) <= 2 * static_cast<double>(bits) + 64) return x;
  long const below = std::max(magnitude(x.lower()), magnitude(x.upper())) - 2;
  return quotient_outward(x, 1, bits - std::max(below, least_magnitude));
}

Value Precision::rounded(Value const& x, long least_magnitude) const {
  auto lower_end = rounded(x.lower_end(), least_magnitude);
  if (x.is_number()) return Value::number(std::move(lower_end));
  return Value::interval(std::move(lower_end), rounded(x.upper_end(), least_magnitude));
}

/// The significant digits of a long exact operand: it may be tiny, and yet it is not 0.
Value Precision::shortened_if_exact(Value const& x) const {
  return x.is_exact() && !is_short(2 * size_of(x)) ? rounded(x, LONG_MIN) : x;
}

/// How far the bound of an end may lie outside.
QNumber Precision::error_at(QNumber const& end, Accuracy accuracy) const {
  // The value is at most 1/(1 - 10^-digits) times its bound, hence less than twice.
  return accuracy.is_relative() ? 2 * abs(end) * unit : unit;
}

}  // namespace zelk::real
