#include "zelk/real/internal/series.h"

#include "zelk/numbers/integer.h"

namespace zelk::real {

namespace {

unsigned long root_of(unsigned long n) {
  unsigned long r = 1;
  while ((r + 1) * (r + 1) <= n) ++r;
  return r;
}

void multiply(mpz_ptr out, mpz_srcptr a, mpz_srcptr b, unsigned long bits) {
  mpz_mul(out, a, b);
  mpz_fdiv_q_2exp(out, out, bits);
}

}  // namespace

void exp_series(mpz_ptr out, mpz_srcptr x, unsigned long bits) {
  unsigned long const halvings = root_of(bits) + 1;
  unsigned long const guard = halvings + mpz_sizeinbase(mpz_srcptr(x), 2) % 1 + 40;
  unsigned long const precision = bits + guard;
  Integer t, term, sum;
  mpz_mul_2exp(t, x, guard - halvings);
  mpz_setbit(term, precision);
  for (unsigned long j = 1; mpz_sgn(term) != 0; ++j) {
    mpz_add(sum, sum, term);
    multiply(term, term, t, precision);
    mpz_fdiv_q_ui(term, term, j);
  }
  for (unsigned long i = 0; i < halvings; ++i) multiply(sum, sum, sum, precision);
  mpz_fdiv_q_2exp(out, sum, guard);
}

void versine_series(mpz_ptr out, mpz_srcptr x, unsigned long bits) {
  unsigned long const halvings = root_of(bits) + 1;
  unsigned long const guard = 2 * halvings + 40;
  unsigned long const precision = bits + guard;
  Integer t, term, sum;
  mpz_mul_2exp(t, x, guard - halvings);
  multiply(t, t, t, precision);
  mpz_set(term, t);
  for (unsigned long j = 3; mpz_sgn(term) != 0; j += 2) {
    if (j % 4 == 3)
      mpz_add(sum, sum, term);
    else
      mpz_sub(sum, sum, term);
    multiply(term, term, t, precision);
    mpz_fdiv_q_ui(term, term, j * (j + 1));
  }
  // 2(1 - cos 2t) = v (4 - v)
  for (unsigned long i = 0; i < halvings; ++i) {
    mpz_mul_2exp(term, sum, 2);
    multiply(sum, sum, sum, precision);
    mpz_sub(sum, term, sum);
  }
  mpz_fdiv_q_2exp(out, sum, guard);
}

void atanh_series(mpz_ptr out, mpz_srcptr x, int sign, unsigned long bits) {
  unsigned long const guard = 40;
  unsigned long const precision = bits + guard;
  Integer power, square, term, sum;
  mpz_mul_2exp(power, x, guard);
  multiply(square, power, power, precision);
  for (unsigned long j = 3; mpz_sgn(power) != 0 && mpz_cmp_si(power, -1) != 0; j += 2) {
    multiply(power, power, square, precision);
    mpz_fdiv_q_ui(term, power, j);
    if (sign > 0 || j % 4 == 3)
      mpz_add(sum, sum, term);
    else
      mpz_sub(sum, sum, term);
  }
  mpz_fdiv_q_2exp(out, sum, guard);
}

void log_series(mpz_ptr out, mpz_srcptr x, unsigned long bits) {
  unsigned long const guard = 40;
  unsigned long const precision = bits + guard;
  Integer m, e, y, sum, correction;
  mpz_mul_2exp(m, x, guard);
  if (bits > 200) {
    unsigned long const near = bits / 3 + 2;
    mpz_fdiv_q_2exp(y, x, bits - near);
    log_series(y, y, near);
    mpz_mul_2exp(y, y, precision - near);
    mpz_abs(correction, y);
    exp_series(e, correction, precision);
    if (mpz_sgn(y) < 0) {
      mpz_setbit(sum, 2 * precision);
      mpz_fdiv_q(e, sum, e);
    }
  } else {
    mpz_setbit(e, precision);
  }
  mpz_add(sum, m, e);
  mpz_sub(m, m, e);
  mpz_mul_2exp(m, m, precision);
  mpz_fdiv_q(m, m, sum);
  atanh_series(correction, m, 1, precision);
  mpz_add(correction, correction, m);
  mpz_mul_2exp(correction, correction, 1);
  mpz_add(y, y, correction);
  mpz_fdiv_q_2exp(out, y, guard);
}

void atan_series(mpz_ptr out, mpz_srcptr x, unsigned long bits) {
  unsigned long const guard = 40;
  unsigned long const precision = bits + guard;
  Integer t, v, c, s, y, sum;
  mpz_mul_2exp(t, x, guard);
  if (bits > 200) {
    unsigned long const near = bits / 3 + 2;
    mpz_fdiv_q_2exp(y, x, bits - near);
    atan_series(y, y, near);
    mpz_mul_2exp(y, y, precision - near);
    // The sine of y and the cosine in double precision, with v(4 - v) = (2 sin y)^2.
    versine_series(v, y, 2 * precision);
  } else {
    // 2 atan(1/2) serves as well as any angle: tangents in halves.
  }
  if (bits > 200) {
    Integer yy;
    mpz_mul_2exp(yy, y, precision);
    versine_series(v, yy, 2 * precision);
    mpz_mul(s, v, v);
    mpz_fdiv_q_2exp(s, s, 2 * precision);
    mpz_mul_2exp(c, v, 2);
    mpz_sub(s, c, s);
    mpz_mul_2exp(s, s, 2 * precision);
    mpz_sqrt(s, s);
    mpz_fdiv_q_2exp(s, s, precision + 1);
    mpz_setbit(c, 2 * precision + 1);
    mpz_set_ui(c, 1);
    mpz_mul_2exp(c, c, 2 * precision + 1);
    mpz_sub(c, c, v);
    mpz_fdiv_q_2exp(c, c, precision + 1);
    mpz_mul(sum, t, s);
    mpz_fdiv_q_2exp(sum, sum, precision);
    mpz_add(sum, sum, c);
    multiply(t, t, c, precision);
    mpz_sub(t, t, s);
    mpz_mul_2exp(t, t, precision);
    mpz_fdiv_q(t, t, sum);
  } else {
    // Twice tan of half the angle: t / (1 + sqrt(1 + t^2)).
    for (int i = 0; i < 2; ++i) {
      mpz_mul(s, t, t);
      mpz_set_ui(c, 1);
      mpz_mul_2exp(c, c, 2 * precision);
      mpz_add(s, s, c);
      mpz_sqrt(s, s);
      mpz_set_ui(c, 1);
      mpz_mul_2exp(c, c, precision);
      mpz_add(s, s, c);
      mpz_mul_2exp(t, t, precision);
      mpz_fdiv_q(t, t, s);
    }
  }
  atanh_series(sum, t, -1, precision);
  mpz_sub(t, t, sum);
  if (bits <= 200) mpz_mul_2exp(t, t, 2);
  mpz_add(y, y, t);
  mpz_fdiv_q_2exp(out, y, guard);
}

}  // namespace zelk::real
