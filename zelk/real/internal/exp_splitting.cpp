#include "zelk/real/internal/exp_splitting.h"

#include <algorithm>
#include <bit>
#include <memory>

#include "zelk/numbers/integer.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/work/poll.h"

namespace zelk::real {

namespace {

/// The series of e^x - 1 at x = n/(d 2^shift), cut into runs of terms.
class Splitting {
 public:
  Splitting(mpz_srcptr n, mpz_srcptr d, unsigned long by, unsigned long bits)
      : numerator(n), denominator(d), shift(by) {
    unsigned long const count = count_terms(bits);
    while (count >> levels > most_in_leaf) ++levels;
    leaf = (count >> levels) + 1;
  }

  /// The sum over 2^bits.
  void sum(mpz_ptr out, unsigned long bits) {
    powers = std::make_unique<Integer[]>(levels + 1);
    mpz_pow_ui(powers[0], numerator, leaf);
    for (unsigned i = 1; i < levels; ++i) {
      work::poll(work::product(work::bits_of(powers[i - 1])));
      mpz_mul(powers[i], powers[i - 1], powers[i - 1]);
    }
    Integer q;
    sum_run(out, q, 0, levels);
    work::poll(work::division(static_cast<double>(bits)));
    real::shift(out, out, static_cast<long>(bits) - static_cast<long>(shift * (leaf << levels)));
    mpz_fdiv_q(out, out, q);
  }

 private:
  static constexpr unsigned long most_in_leaf = 12;

  /// After so many the rest of the series is less than 2^-bits.
  unsigned long count_terms(unsigned long bits) const {
    long const size = static_cast<long>(mpz_sizeinbase(numerator, 2)) -
                      static_cast<long>(mpz_sizeinbase(denominator, 2)) + 1 -
                      static_cast<long>(shift);  // |x| < 2^size
    long gained = -2;
    unsigned long count = 1;
    for (; gained <= static_cast<long>(bits); ++count)
      gained += static_cast<long>(std::bit_width(count)) - 1 - size;
    return count;
  }

  /// The terms from `begin` on in units of the one before them: t/(q 2^(shift count)).
  void sum_run(mpz_ptr t, mpz_ptr q, unsigned long begin, unsigned level) const {
    if (level == 0) {
      sum_leaf(t, q, begin);
      return;
    }
    unsigned long const half = leaf << (level - 1);
    sum_run(t, q, begin, level - 1);
    Integer right_t, right_q;
    sum_run(right_t, right_q, begin + half, level - 1);
    work::poll(3 * work::product(work::bits_of(right_t)));
    // t/q = t1/q1 + x^half/q1 t2/q2
    mpz_mul(t, t, right_q);
    mpz_mul_2exp(t, t, shift * half);
    mpz_addmul(t, powers[level - 1], right_t);
    mpz_mul(q, q, right_q);
  }

  void sum_leaf(mpz_ptr t, mpz_ptr q, unsigned long begin) const {
    mpz_set_ui(t, 0);
    mpz_set_ui(q, 1);
    Integer whole;
    for (unsigned long i = leaf; i-- > 0;) {
      mpz_mul_2exp(whole, q, shift * (leaf - 1 - i));
      mpz_add(t, t, whole);
      mpz_mul(t, t, numerator);
      mpz_mul(q, q, denominator);
      mpz_mul_ui(q, q, begin + i + 1);
    }
  }

  mpz_srcptr numerator;
  mpz_srcptr denominator;
  unsigned long shift;
  unsigned levels = 0;
  unsigned long leaf;                 // terms in one; 2^levels leaves
  std::unique_ptr<Integer[]> powers;  // of the numerator: leaf 2^i at i
};

}  // namespace

void exp_in_bursts(mpz_ptr out, mpz_srcptr x, unsigned long bits) {
  Integer rest(x), part, product, sum;
  Integer const one(1UL);
  mpz_setbit(sum, bits);
  // The bits of x from place to place, ever more at a time.
  for (unsigned long place = 24; mpz_sgn(rest.get()) != 0; place *= 2) {
    place = std::min(place, bits);
    mpz_tdiv_q_2exp(part, rest, bits - place);
    mpz_tdiv_r_2exp(rest, rest, bits - place);
    if (mpz_sgn(part.get()) == 0) continue;
    work::poll(work::product(static_cast<double>(bits)));
    // e^part - 1
    unsigned long const zeros = mpz_scan1(part, 0);
    mpz_tdiv_q_2exp(part, part, zeros);
    Splitting(part, one, place - zeros, bits).sum(product, bits);
    mpz_mul(product, product, sum);
    mpz_fdiv_q_2exp(product, product, bits);
    mpz_add(sum, sum, product);
  }
  mpz_swap(out, sum);
}

void exp_of_ratio(mpz_ptr out, mpz_srcptr n, mpz_srcptr d, unsigned long bits) {
  Integer sum, one;
  Splitting(n, d, 0, bits).sum(sum, bits);
  mpz_setbit(one, bits);
  mpz_add(out, sum, one);
}

}  // namespace zelk::real
