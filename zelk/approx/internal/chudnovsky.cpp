#include "zelk/approx/internal/chudnovsky.h"

#include "zelk/numbers/integer.h"
#include "zelk/work/poll.h"

namespace zelk::na {

namespace {

// 1/pi = 12/640320^(3/2) times the sum of t_k (first + step k), where t_0 = 1 and
// t_k/t_(k-1) = -p(k)/q(k) with p(k) = (6k - 5)(2k - 1)(6k - 1) and q(k) = cube_24 k^3.
constexpr unsigned long first = 13591409;
constexpr unsigned long step = 545140134;
constexpr unsigned long cube_24 = 10939058860032000;  // 640320^3 / 24

/// What the terms from some k to some other contribute: the products of p and of q, and t/q, their
/// sum in units of the term before them.
struct Part {
  Integer p, q, t;
};

void set_term(Part& part, unsigned long k) {
  mpz_set_ui(part.p, 6 * k - 5);
  mpz_mul_ui(part.p, part.p, 2 * k - 1);
  mpz_mul_ui(part.p, part.p, 6 * k - 1);
  mpz_neg(part.p, part.p);
  mpz_ui_pow_ui(part.q, k, 3);
  mpz_mul_ui(part.q, part.q, cube_24);
  mpz_mul_ui(part.t, part.p, first + step * k);
}

/// The terms from `begin` to before `end`. Requires: begin < end.
void sum_terms(Part& part, unsigned long begin, unsigned long end) {
  if (end - begin == 1) {
    set_term(part, begin);
    return;
  }
  unsigned long const middle = begin + (end - begin) / 2;
  sum_terms(part, begin, middle);
  Part right;
  sum_terms(right, middle, end);
  work::poll(4 * work::product(work::bits_of(right.q)));
  // t = t q' + p t'
  mpz_mul(part.t, part.t, right.q);
  mpz_addmul(part.t, part.p, right.t);
  mpz_mul(part.p, part.p, right.p);
  mpz_mul(part.q, part.q, right.q);
}

}  // namespace

void sum_chudnovsky(mpz_ptr below, unsigned long bits) {
  // Each term is more than 2^47 times smaller than the one before.
  unsigned long const count = (bits + 40) / 47 + 2;
  Part part;
  sum_terms(part, 1, count);
  mpz_addmul_ui(part.t, part.q, first);
  work::poll(3 * work::division(static_cast<double>(bits)));

  mpz_set_ui(below, 10005);
  mpz_mul_2exp(below, below, 2 * bits);
  mpz_sqrt(below, below);
  mpz_mul(below, below, part.q);
  mpz_mul_ui(below, below, 426880);
  mpz_fdiv_q(below, below, part.t);
  mpz_sub_ui(below, below, 2);
}

}  // namespace zelk::na
