#include <algorithm>

#include "zelk/numbers/integer.h"
#include "zelk/real/internal/chord.h"
#include "zelk/real/internal/constants.h"
#include "zelk/real/internal/fixed_functions.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/point_functions.h"

namespace zelk::real {

namespace {

/// The cosine of |x| - shift pi/2.
Interval shifted_cosine(QNumber const& x, unsigned long shift, int sign, long bits,
                        Constants& constants) {
  bits = std::max(bits, 0L);
  mp_size_t const n = chord_limbs(static_cast<unsigned long>(bits) + 2);
  long const precision = n * GMP_NUMB_BITS;
  // |x| = k pi/2 + r with 0 <= r < pi/2, or nearly so; r in halves of units
  long const guard = std::max(magnitude(x), 0L);
  Integer r, pi, k;
  floor_scaled(r, abs(x), precision + guard + 1);
  constants.pi(pi, static_cast<unsigned long>(precision + guard));
  mpz_fdiv_q(k, r, pi);
  mpz_submul(r, k, pi);
  // cos(r + k pi/2): cos r, -sin r, -cos r, sin r, and sin r = cos(pi/2 - r)
  unsigned long const turns = (mpz_fdiv_ui(k, 4) + 4 - shift) % 4;
  if (turns % 2 == 1) mpz_sub(r, pi, r);
  mpz_fdiv_q_2exp(r, r, static_cast<unsigned long>(guard) + 1);
  chord_squared(r, r, n, Chord::circular);
  if (turns == 1 || turns == 2) sign = -sign;
  Integer value;  // twice the cosine
  mpz_setbit(value, static_cast<unsigned long>(precision) + 1);
  mpz_sub(value, value, r);
  if (sign < 0) mpz_neg(value, value);
  return enclosure(value, chord_error_bits(n), precision + 1, bits);
}

}  // namespace

Interval cos_at(QNumber const& x, long bits, Constants& constants) {
  if (x.is_zero()) return QNumber(1);
  return shifted_cosine(x, 0, 1, bits, constants);
}

Interval sin_at(QNumber const& x, long bits, Constants& constants) {
  if (x.is_zero()) return QNumber();
  return shifted_cosine(x, 1, x.sign(), bits, constants);
}

QNumber quadrant_of(QNumber const& x, Constants& constants) {
  if (x.is_zero()) return {};
  Integer scaled, least, greatest, pi;
  for (long bits = 64;; bits *= 2) {
    long const places = bits + std::max(magnitude(x), 0L);
    floor_scaled(scaled, abs(x), places + 1);
    constants.pi(pi, static_cast<unsigned long>(places));
    mpz_fdiv_q(greatest, scaled, pi);
    mpz_add_ui(pi, pi, Constants::units);
    mpz_fdiv_q(least, scaled, pi);
    if (mpz_cmp(least, greatest) != 0) continue;
    // x is no multiple of pi/2.
    if (x.sign() < 0) mpz_com(least, least);
    return QNumber::from_lowest_terms({least, IntegerView(1L)});
  }
}

Interval pi_at(long bits, Constants& constants) {
  bits = std::max(bits, 0L);
  Integer pi;
  constants.pi(pi, static_cast<unsigned long>(bits) + 8);
  mpz_add_ui(pi, pi, 1);
  return enclosure(pi, 0, bits + 8, bits);
}

}  // namespace zelk::real
