#include "zelk/real/internal/fixed_functions.h"

#include "zelk/numbers/integer.h"
#include "zelk/real/internal/chord.h"
#include "zelk/real/internal/exp_splitting.h"
#include "zelk/real/internal/word_functions.h"
#include "zelk/work/poll.h"

namespace zelk::real {

namespace {

/// From where on the exponential is quicker by splitting than by halvings.
constexpr mp_size_t limbs_for_bursts = 1900;

unsigned long bits_of(mp_size_t n) { return static_cast<unsigned long>(n) * GMP_NUMB_BITS; }

/// Digits of the value from which n limbs are reached: enough for a few terms of its correction.
mp_size_t start_of(mp_size_t n) { return n <= 7 ? 1 : (n + 2) / 3; }

/// Adds factor (d ± d^3/3 + d^5/5 ± ...) to the sum; d is lost.
void add_arc(mpz_ptr sum, mpz_ptr d, mp_size_t n, bool is_alternating, unsigned long factor) {
  Integer square, term;
  mpz_mul(square, d, d);
  mpz_tdiv_q_2exp(square, square, bits_of(n));
  for (unsigned long k = 1;; k += 2) {
    mpz_tdiv_q_ui(term, d, k);
    if (is_alternating && k % 4 == 3)
      mpz_submul_ui(sum, term, factor);
    else
      mpz_addmul_ui(sum, term, factor);
    if (mpz_sgn(square) == 0) return;
    work::poll_products(n, 1);
    mpz_mul(d, d, square);
    mpz_tdiv_q_2exp(d, d, bits_of(n));
    if (mpz_sgn(d) == 0) return;
  }
}

/// n/d over 2^(64 n)
void divide(mpz_ptr n, mpz_srcptr d, mp_size_t limbs) {
  work::poll_products(limbs, 4);
  mpz_mul_2exp(n, n, bits_of(limbs));
  mpz_tdiv_q(n, n, d);
}

}  // namespace

mp_size_t limbs_for(unsigned long bits) { return chord_limbs(bits + function_error_bits); }

void exp_fixed(mpz_ptr out, mpz_srcptr x, mp_size_t n) {
  if (n >= limbs_for_bursts) {
    exp_in_bursts(out, x, bits_of(n));
    return;
  }
  // With w = 2 cosh x - 2, e^x = cosh x + sinh x = (2 + w + sqrt(w (4 + w)))/2.
  Integer w, root;
  chord_squared(w, x, n, Chord::hyperbolic);
  mpz_set_ui(root, 4);
  mpz_mul_2exp(root, root, bits_of(n));
  mpz_add(root, root, w);
  work::poll_products(n, 5);
  mpz_mul(root, root, w);
  mpz_sqrt(root, root);
  mpz_add(root, root, w);
  mpz_fdiv_q_2exp(root, root, 1);
  mpz_set_ui(w, 1);
  mpz_mul_2exp(w, w, bits_of(n));
  mpz_add(out, root, w);
}

void log_fixed(mpz_ptr out, mpz_srcptr x, mp_size_t n) {
  Integer y, e, d;
  mp_size_t const start = start_of(n);
  mpz_tdiv_q_2exp(y, x, bits_of(n - start) + (start == 1 ? 2 : 0));
  if (start == 1)
    mpz_set_ui(y, log_of_word(mpz_get_ui(y)));
  else
    log_fixed(y, y, start);
  if (n > 1) {
    // log x = y + 2 atanh((x - e^y)/(x + e^y))
    mpz_mul_2exp(y, y, bits_of(n - start));
    exp_fixed(e, y, n);
    mpz_sub(d, x, e);
    mpz_add(e, e, x);
    divide(d, e, n);
    add_arc(y, d, n, false, 2);
  }
  mpz_swap(out, y);
}

void atan_fixed(mpz_ptr out, mpz_srcptr x, mp_size_t n) {
  Integer y, d;
  if (mpz_sizeinbase(x, 2) + bits_of(n) / 20 < bits_of(n)) {
    mpz_set(d, x);
    add_arc(y, d, n, true, 1);
    mpz_swap(out, y);
    return;
  }
  mp_size_t const start = start_of(n);
  mpz_tdiv_q_2exp(y, x, bits_of(n - start) + (start == 1 ? 1 : 0));
  if (start == 1)
    mpz_set_ui(y, atan_of_word(mpz_get_ui(y)));
  else
    atan_fixed(y, y, start);
  if (n > 1) {
    // atan x = y + atan((x cos y - sin y)/(cos y + x sin y))
    Integer v, cos, sin;
    mpz_mul_2exp(y, y, bits_of(n - start));
    chord_squared(v, y, n, Chord::circular);
    mpz_setbit(sin, bits_of(n) + 2);
    mpz_sub(sin, sin, v);
    work::poll_products(n, 7);
    mpz_mul(sin, sin, v);
    mpz_sqrt(sin, sin);  // twice the sine
    mpz_setbit(cos, bits_of(n) + 1);
    mpz_sub(cos, cos, v);  // and the cosine
    mpz_mul(v, x, sin);
    mpz_tdiv_q_2exp(v, v, bits_of(n));
    mpz_add(v, v, cos);
    mpz_mul(d, x, cos);
    mpz_tdiv_q_2exp(d, d, bits_of(n));
    mpz_sub(d, d, sin);
    divide(d, v, n);
    add_arc(y, d, n, true, 1);
  }
  mpz_swap(out, y);
}

}  // namespace zelk::real
