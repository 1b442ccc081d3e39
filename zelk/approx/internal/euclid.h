#pragma once

#include <cassert>
#include <cstdint>

#include "zelk/numbers/integer.h"
#include "zelk/numbers/internal/leading_bits.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// The continued fraction of n/d in place: each step splits off the floor and inverts what is left,
/// which is one division with remainder and an exchange.
class Euclid {
 public:
  /// Starts with q's numerator and denominator, in copies.
  explicit Euclid(QNumber const& q) : n(q.numerator()), d(q.denominator()) {}

  /// Whether nothing is left: n/d is 0.
  bool is_done() const { return mpz_sgn(n.get()) == 0; }

  /// Requires: not done.
  void split(mpz_ptr term) {
    assert(!is_done());
    if (unsigned long const quotient = certain_quotient(); quotient != 0) {
      mpz_set_ui(term, quotient);
      mpz_submul_ui(n, d, quotient);
    } else {
      mpz_fdiv_qr(term, n, n, d);
    }
    if (!is_done()) mpz_swap(n, d);
  }

  /// What is left to expand; d is 1 when that is 0.
  QNumber::LowestTerms rest() const { return {n, d}; }

 private:
  /// floor(n/d) for n >= d, if the leading 63 bits of n, x, and the bits of d at the same places,
  /// y, decide: n/d lies between x/(y + 1) and (x + 1)/y. Most quotients of an expansion are small,
  /// so they nearly always do. Otherwise 0, and for an n of one limb.
  unsigned long certain_quotient() const {
    auto const size = static_cast<mp_size_t>(mpz_size(n));
    if (size < 2 || mpz_cmp(n, d) < 0) return 0;
    int const unused = __builtin_clzl(mpz_getlimbn(n, size - 1));
    std::uint64_t const x = bits_below(n, size, unused);
    std::uint64_t const y = bits_below(d, size, unused);
    std::uint64_t const quotient = x / (y + 1);
    // (quotient + 1) y is at most x + y, hence within 64 bits.
    return x < (quotient + 1) * y ? quotient : 0;
  }

  Integer n, d;
};

}  // namespace zelk::na
