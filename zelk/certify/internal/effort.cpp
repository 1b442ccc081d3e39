#include "zelk/certify/internal/effort.h"

#include <gmp.h>

#include <algorithm>
#include <bit>
#include <cmath>

#include "zelk/real/elementary_functions.h"

namespace zelk::certify {

namespace {

long size_of(mpz_srcptr n) { return static_cast<long>(mpz_sizeinbase(n, 2)); }

long width_of(long n) { return static_cast<long>(std::bit_width(static_cast<unsigned long>(n))); }

long root_of(long n) { return std::lround(std::sqrt(static_cast<double>(n))); }

/// The least n with y^n/n! < 2^-bits for y < 2^-smallness.
long exponential_terms(long smallness, long bits) {
  double reached = 0;
  long n = 0;
  while (reached < static_cast<double>(bits)) {
    ++n;
    reached += static_cast<double>(smallness) + std::log2(static_cast<double>(n));
  }
  return n;
}

/// The bits of l = a^(n/d) where l^d and a^n are formed without rounding, if that may be an
/// equality; otherwise 0.
long bits_of_equality(QNumber const& l, long d, QNumber const& a, long n) {
  auto const above = size_of(l.numerator()) * d, below = size_of(l.denominator()) * d;
  auto const a_above = size_of(a.numerator()) * std::abs(n),
             a_below = size_of(a.denominator()) * std::abs(n);
  auto const may_be_equal = [&](long left, long right) {
    return std::abs(left - right) <= d + std::abs(n);
  };
  bool const fits = n > 0 ? may_be_equal(above, a_above) && may_be_equal(below, a_below)
                          : may_be_equal(above, a_below) && may_be_equal(below, a_above);
  return fits ? std::max({above, below, a_above, a_below}) : 0;
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
  return static_cast<long>(digits * 332193UL / 100000UL) + zeros + real::answer_margin_bits + 12;
}

Effort effort_of_exp(long magnitude, long accuracy) {
  long const smallness = root_of(accuracy), halvings = std::max(0L, magnitude) + smallness;
  long const bits = accuracy + halvings + width_of(accuracy) + 6;
  return {halvings, exponential_terms(smallness, bits), bits};
}

Effort effort_of_turn(long accuracy) {
  // A doubling of the angle is three products, and takes log2 3 bits.
  long const smallness = root_of(accuracy) / 2 + 1, halvings = smallness + 1;
  long const bits = accuracy + 8 * halvings / 5 + width_of(accuracy) + 9;
  return {halvings, exponential_terms(smallness, bits), bits};
}

Effort effort_of_atan(long accuracy) {
  long const smallness = root_of(accuracy) / 2 + 1, halvings = smallness + 1;
  long const bits = accuracy + halvings + width_of(accuracy) + 9;
  return {halvings, bits / (2 * smallness) + 1, bits};
}

Effort effort_of_pi(long accuracy) {
  long const bits = accuracy + width_of(accuracy) + 6;
  return {0, bits * 100 / 464 + 8, bits};
}

long bits_of_power(real::Interval const& x, QNumber const& exponent, real::Interval const& y,
                   long accuracy) {
  long const n = mpz_get_si(exponent.numerator()), d = mpz_get_si(exponent.denominator());
  long bits = accuracy + magnitude(y) + width_of(std::abs(n)) + width_of(d) + 16;
  for (auto const* l : {&y.lower(), &y.upper()})
    for (auto const* a : {&x.lower(), &x.upper()})
      bits = std::max(bits, bits_of_equality(*l, d, *a, n));
  return bits;
}

}  // namespace zelk::certify
