#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>

#include <gmp.h>

namespace zelk {

/// The 63 bits of n's magnitude that begin `unused` bits below the top of limb `size` - 1.
/// Requires: all bits above them are 0.
inline std::uint64_t bits_below(mpz_srcptr n, mp_size_t size, int unused) {
  assert(mpz_size(n) <= static_cast<std::size_t>(size) &&
         (unused == 0 || mpz_getlimbn(n, size - 1) >> (64 - unused) == 0));
  std::uint64_t top = mpz_getlimbn(n, size - 1) << unused;
  if (unused != 0) top |= mpz_getlimbn(n, size - 2) >> (64 - unused);  // 0 below the last limb
  return top >> 1;
}

/// The magnitude of an integer other than 0, or of a product of up to three of them, known by its
/// leading bits: it lies in [mantissa, mantissa + slack] * 2^exponent, 2^62 <= mantissa < 2^63.
///
/// Decides most comparisons of products without forming them.
class LeadingBits {
 public:
  /// Of |n|. Requires: n is not 0.
  explicit LeadingBits(mpz_srcptr n) {
    assert(mpz_sgn(n) != 0);
    auto const size = static_cast<mp_size_t>(mpz_size(n));
    int const unused = __builtin_clzl(mpz_getlimbn(n, size - 1));
    mantissa = bits_below(n, size, unused);
    exponent = 64 * size - unused - 63;
  }

  /// Of the product. Requires: a and b stand for at most three integers together.
  friend LeadingBits operator*(LeadingBits const& a, LeadingBits const& b) {
    Wide const product = static_cast<Wide>(a.mantissa) * b.mantissa;
    int const shift = 62 + static_cast<int>(product >> 125);
    return {static_cast<std::uint64_t>(product >> shift), a.exponent + b.exponent + shift};
  }

  /// -1 or 1 when a < b or a > b is certain, 0 when the leading bits do not tell.
  friend int compare(LeadingBits const& a, LeadingBits const& b) {
    // A lead of 2 decides: 4 * 2^62 = 2^64 is more than 2^63 and the slack.
    std::int64_t const lead = a.exponent - b.exponent;
    if (lead < -1 || lead > 1) return lead < 0 ? -1 : 1;
    std::uint64_t const x = a.mantissa << (lead > 0 ? 1 : 0);
    std::uint64_t const y = b.mantissa << (lead < 0 ? 1 : 0);
    if (x > y) return x - y > 2 * slack ? 1 : 0;
    return y - x > 2 * slack ? -1 : 0;
  }

 private:
  friend class LowerBound;
  __extension__ using Wide = unsigned __int128;

  // Cutting an integer loses less than 1 unit. Multiplying mantissas that lack up to r and s loses
  // less than 2 (r + s) + 2: 6 for two factors, 16 for three.
  static constexpr std::uint64_t slack = 16;

  LeadingBits(std::uint64_t bits, std::int64_t scale) : mantissa(bits), exponent(scale) {}

  std::uint64_t mantissa;
  std::int64_t exponent;
};

/// The sign of |x1 x2| - |y1 y2|: by leading bits, and only when those do not tell by forming the
/// products, in `left` and `right`. Requires: none of the four is 0.
inline int compare_products(mpz_srcptr x1, mpz_srcptr x2, mpz_srcptr y1, mpz_srcptr y2,
                            mpz_ptr left, mpz_ptr right) {
  int const verdict = compare(LeadingBits(x1) * LeadingBits(x2), LeadingBits(y1) * LeadingBits(y2));
  if (verdict != 0) return verdict;
  mpz_mul(left, x1, x2);
  mpz_mul(right, y1, y2);
  return mpz_cmpabs(left, right);
}

}  // namespace zelk
