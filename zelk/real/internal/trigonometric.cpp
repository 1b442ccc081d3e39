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
  mp_size_t const n = limbs_for(static_cast<unsigned long>(bits) + 3);
  long const precision = n * GMP_NUMB_BITS;
  unsigned long const error = 1UL << (chord_error_bits(n) + 1);
  long const guard = std::max(magnitude(x), 0L) + 4;
  auto const places = static_cast<unsigned long>(precision + guard);
  Integer r, pi, k;
  floor_scaled(r, abs(x), precision + guard + 1);
  constants.pi(pi, places);
  mpz_fdiv_q(k, r, pi);
  mpz_submul(r, k, pi);  // in halves
  mpz_fdiv_r_2exp(k, k, 2);
  unsigned long const turns = (mpz_get_ui(k) + 4 - shift) % 4;
  // cos(y + k pi/2): cos y, -sin y, -cos y, sin y, and sin y = cos(pi/2 - y)
  if (turns % 2 == 1) mpz_sub(r, pi, r);
  mpz_fdiv_q_2exp(r, r, static_cast<unsigned long>(guard) + 1);
  if (mpz_sgn(r) < 0) mpz_set_ui(r, 0);
  chord_squared(r, r, n, Chord::circular);
  // No farther than the error from -2 and 2: what is near them lies on this side.
  mpz_set_ui(k, 1);
  mpz_mul_2exp(k, k, static_cast<unsigned long>(precision) + 1);
  mpz_sub(r, k, r);
  mpz_sub_ui(k, k, error);
  if (mpz_cmp(r, k) > 0) mpz_set(r, k);
  mpz_neg(k, k);
  if (mpz_cmp(r, k) < 0) mpz_set(r, k);
  if (turns == 1 || turns == 2) sign = -sign;
  if (sign < 0) mpz_neg(r, r);
  return enclosure(r, error, precision + 1, bits);
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
  Integer below, above, least, greatest, pi;
  for (long bits = 64;; bits *= 2) {
    long const places = bits + std::max(magnitude(x), 0L);
    floor_scaled(below, abs(x), places + 1);
    constants.pi(pi, static_cast<unsigned long>(places));
    mpz_add_ui(above, below, 1);
    mpz_fdiv_q(greatest, above, pi);
    mpz_add_ui(pi, pi, Constants::units);
    mpz_fdiv_q(least, below, pi);
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
  return enclosure(pi, 1, bits + 8, bits);
}

}  // namespace zelk::real
