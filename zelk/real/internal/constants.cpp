#include "zelk/real/internal/constants.h"

#include "zelk/approx/short_bounds.h"
#include "zelk/real/internal/fixed_point.h"

namespace zelk::real {

namespace {

/// What the terms from some k to some other contribute to atanh(1/n): the product of the
/// denominators q of their quotients, that of 2k + 1, and the sum over both.
struct Part {
  Integer power, odd, sum;
};

/// sum over begin <= k < end of n^-(2(k - begin) + 2)/(2k + 1) = sum/(power odd).
void sum_atanh(Part& part, unsigned long n, unsigned long begin, unsigned long end) {
  if (end - begin == 1) {
    mpz_set_ui(part.power, n);
    mpz_mul_ui(part.power, part.power, n);
    mpz_set_ui(part.odd, 2 * begin + 1);
    mpz_set_ui(part.sum, 1);
    return;
  }
  unsigned long const middle = begin + (end - begin) / 2;
  sum_atanh(part, n, begin, middle);
  Part right;
  sum_atanh(right, n, middle, end);
  // s/(p o) + s'/(p p' o') = (s p' o' + s' o)/(p p' o o')
  mpz_mul(part.sum, part.sum, right.power);
  mpz_mul(part.sum, part.sum, right.odd);
  mpz_addmul(part.sum, right.sum, part.odd);
  mpz_mul(part.power, part.power, right.power);
  mpz_mul(part.odd, part.odd, right.odd);
}

/// Adds factor atanh(1/n) 2^bits, less 1 + |factor| at most and plus |factor| at most.
void add_atanh(mpz_ptr sum, long factor, unsigned long n, unsigned long bits) {
  // The terms left out are less than n^-2count, and so less than 2^-bits.
  unsigned long const bits_of_square = 2 * (mpz_sizeinbase(Integer(n), 2) - 1);
  Part part;
  sum_atanh(part, n, 0, bits / bits_of_square + 2);
  mpz_mul_si(part.sum, part.sum, factor);
  mpz_mul_ui(part.sum, part.sum, n);
  mpz_mul_2exp(part.sum, part.sum, bits);
  mpz_mul(part.power, part.power, part.odd);
  mpz_fdiv_q(part.sum, part.sum, part.power);
  mpz_add(sum, sum, part.sum);
}

}  // namespace

void Constants::compute_pi(mpz_ptr below, unsigned long bits) {
  // 10^-digits <= 2^-(bits + 2)
  auto const digits = static_cast<unsigned>((bits + 2) * 30103 / 100000 + 1);
  floor_scaled(below, na::short_pi_bounds(digits).first, static_cast<long>(bits));
}

void Constants::compute_log2(mpz_ptr below, unsigned long bits) {
  constexpr unsigned long guard = 8;
  Integer sum;
  add_atanh(sum, 18, 26, bits + guard);
  add_atanh(sum, -2, 4801, bits + guard);
  add_atanh(sum, 8, 8749, bits + guard);
  // Within 31 of log 2 * 2^(bits + 8) on either side.
  mpz_sub_ui(sum, sum, 32);
  mpz_fdiv_q_2exp(below, sum, guard);
}

void Constants::truncate(Kept& kept, mpz_ptr below, unsigned long bits) {
  if (kept.bits < bits) {
    kept.compute(kept.below, bits);
    kept.bits = bits;
  }
  mpz_fdiv_q_2exp(below, kept.below, kept.bits - bits);
}

}  // namespace zelk::real
