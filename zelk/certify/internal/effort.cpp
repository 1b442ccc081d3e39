#include "zelk/certify/internal/effort.h"

#include <gmp.h>

#include <algorithm>
#include <cmath>

#include "zelk/numbers/functions.h"
#include "zelk/real/elementary_functions.h"

namespace zelk::certify {

namespace {

long size_of(mpz_srcptr n) { return static_cast<long>(mpz_sizeinbase(n, 2)); }

/// Of the longest part.
long size_of(real::Interval const& x) {
  long size = 0;
  for (auto const* end : {&x.lower(), &x.upper()})
    size = std::max({size, size_of(end->numerator()), size_of(end->denominator())});
  return size;
}

double log2_of(mpz_srcptr n) {
  long exponent = 0;
  double const mantissa = mpz_get_d_2exp(&exponent, n);
  return std::log2(std::abs(mantissa)) + static_cast<double>(exponent);
}

}  // namespace

long magnitude(QNumber const& x) { return size_of(x.numerator()) - size_of(x.denominator()) + 1; }

long magnitude(real::Interval const& x) {
  return std::max({0L, magnitude(x.lower()), magnitude(x.upper())});
}

long accuracy_of(real::Interval const& image, unsigned digits) {
  long zeros = 0;
  for (auto const* end : {&image.lower(), &image.upper()})
    if (!end->is_zero()) zeros = std::max(zeros, 2 - magnitude(*end));
  return digits * 10L / 3 + zeros + real::answer_margin_bits + spare_bits;  // log2 10 < 10/3
}

long flatness(real::Interval const& x, long accuracy) {
  // The cosine of an arc sine is sqrt(1 - x^2).
  long bits = 0;
  for (auto const* end : {&x.lower(), &x.upper()})
    if (auto const square = 1 - *end * *end; !square.is_zero())
      bits = std::max(bits, 2 - magnitude(square) / 2);
  return std::min(bits, accuracy);
}

long smallness_of_term(QNumber const& x, long n) {
  if (x.is_zero()) return 0;
  auto const count = static_cast<double>(n);
  double const power = count * (log2_of(x.numerator()) - log2_of(x.denominator()));
  return std::max(0L, std::lround(std::lgamma(count + 1) / std::log(2) - power) + 2);
}

bool is_short_power(real::Interval const& x, QNumber const& exponent, real::Interval const& image) {
  constexpr long most_bits = 1L << 22;
  return std::max(abs(numerator(exponent)) * size_of(x), denominator(exponent) * size_of(image)) <=
         most_bits;
}

}  // namespace zelk::certify
