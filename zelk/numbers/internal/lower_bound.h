#pragma once

#include <bit>
#include <cassert>
#include <cstdint>

#include <gmp.h>

#include "zelk/numbers/internal/leading_bits.h"

namespace zelk {

/// A positive number known from below: it is at least mantissa * 2^exponent, where
/// 2^62 <= mantissa < 2^63. Each operation loses less than one part in 2^60.
///
/// For long products of which only the size matters.
class LowerBound {
 public:
  /// Of |n/d|. Requires: neither is 0.
  LowerBound(mpz_srcptr n, mpz_srcptr d) : LowerBound(LeadingBits(n), LeadingBits(d)) {}

  friend LowerBound operator*(LowerBound const& a, LowerBound const& b) {
    return {static_cast<Wide>(a.mantissa) * b.mantissa, a.exponent + b.exponent};
  }
  /// Requires: k > 0.
  friend LowerBound operator/(LowerBound const& a, std::uint32_t k) {
    assert(k > 0);
    return {(static_cast<Wide>(a.mantissa) << 64) / k, a.exponent - 64};
  }

  /// Whether the bound is at least 1, and so the number.
  bool reaches_one() const { return exponent >= -62; }

 private:
  __extension__ using Wide = unsigned __int128;

  /// d is less than (its mantissa + 1) * 2^(its exponent).
  LowerBound(LeadingBits const& n, LeadingBits const& d)
      : LowerBound((static_cast<Wide>(n.mantissa) << 64) / (d.mantissa + 1),
                   n.exponent - d.exponent - 64) {}

  /// Cuts to 63 bits. Requires: bits >= 2^63.
  LowerBound(Wide bits, std::int64_t scale) {
    int const surplus = 65 - std::countl_zero(static_cast<std::uint64_t>(bits >> 64));
    mantissa = static_cast<std::uint64_t>(bits >> surplus);
    exponent = scale + surplus;
  }

  std::uint64_t mantissa;
  std::int64_t exponent;
};

}  // namespace zelk
