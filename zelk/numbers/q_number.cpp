#include "zelk/numbers/q_number.h"

#include <numeric>

#include "zelk/numbers/leading_bits.h"

namespace zelk {

constinit long gcd_cache[gcd_cache_limit + 1][gcd_cache_limit + 1] = {};

mpz_t QNumber::gmp_tmp[4];

namespace {

struct ScratchSetup {
  ScratchSetup() {
    for (auto& scratch : QNumber::gmp_tmp) mpz_init(scratch);
  }
};

// The earliest priority open to programs: before every other object with dynamic initialisation.
// Nothing undoes it, so numbers also work in destructors that run after main.
[[gnu::init_priority(101)]] ScratchSetup const scratch_setup;

/// Requires: n > 0.
bool is_one(mpz_srcptr n) { return mpz_getlimbn(n, 0) == 1 && mpz_size(n) == 1; }

/// n / divisor, exact: n itself when there is nothing to divide, otherwise formed in `room`.
mpz_srcptr cancelled(mpz_ptr room, mpz_srcptr n, mpz_srcptr divisor) {
  if (is_one(divisor)) return n;
  mpz_divexact(room, n, divisor);
  return room;
}

void make_denominator_positive(mpz_ptr n, mpz_ptr d) {
  if (mpz_sgn(d) > 0) return;
  mpz_neg(n, n);
  mpz_neg(d, d);
}

void normalise(mpz_ptr n, mpz_ptr d) {
  auto& gcd = QNumber::gmp_tmp[0];
  mpz_gcd(gcd, n, d);
  if (!is_one(gcd)) {
    mpz_divexact(n, n, gcd);
    mpz_divexact(d, d, gcd);
  }
  make_denominator_positive(n, d);
}

/// n/d = an/ad * bn/bd, cancelled crosswise. n and d may be an and ad, and bn and bd too.
void multiply(mpz_ptr n, mpz_ptr d, mpz_srcptr an, mpz_srcptr ad, mpz_srcptr bn, mpz_srcptr bd) {
  auto& [t0, t1, t2, t3] = QNumber::gmp_tmp;
  if (an == bn) {  // a square is in lowest terms as it stands
    mpz_mul(n, an, an);
    mpz_mul(d, ad, ad);
    return;
  }
  mpz_gcd(t0, an, bd);
  mpz_gcd(t1, bn, ad);
  mpz_srcptr const left = cancelled(t2, an, t0);
  mpz_srcptr const below_left = cancelled(t3, bd, t0);
  mpz_srcptr const right = cancelled(t0, bn, t1);
  mpz_srcptr const below_right = cancelled(t1, ad, t1);
  mpz_mul(n, left, right);
  mpz_mul(d, below_left, below_right);
}

bool fits_word(mpz_srcptr n) { return mpz_fits_slong_p(n) != 0 && mpz_get_si(n) != LONG_MIN; }

}  // namespace

void detail::remember_gcd(long a, long b) { gcd_cache[b][a] = gcd_cache[a][b] = std::gcd(a, b); }

QNumber QNumber::from_mpz(mpz_srcptr numerator, mpz_srcptr denominator) {
  assert(mpz_sgn(denominator) != 0);
  if (fits_word(numerator) && fits_word(denominator))
    return {mpz_get_si(numerator), mpz_get_si(denominator)};
  QNumber const big = big_from_mpz(numerator, denominator);
  auto const& [n, d] = *big.block();
  if (!fits_word(n) || !fits_word(d)) return big;
  QNumber small;
  small.num = mpz_get_si(n);
  small.den = mpz_get_si(d);
  return small;
}

QNumber QNumber::big_from_mpz(mpz_srcptr numerator, mpz_srcptr denominator) {
  assert(mpz_sgn(denominator) != 0);
  QNumber big;
  big.adopt(new Block(numerator, denominator));
  big.normalise_big();
  return big;
}

void QNumber::make_big() { adopt(new Block(num, den)); }

void QNumber::clone_block() { adopt(new Block(block()->numerator, block()->denominator)); }

void QNumber::release_block() { delete block(); }

void QNumber::normalise_big() { normalise(block()->numerator, block()->denominator); }

void QNumber::assign_big(QNumber const& other) {
  if (den == 0) {
    mpz_set(block()->numerator, other.numerator());
    mpz_set(block()->denominator, other.denominator());
  } else {
    adopt(new Block(other.numerator(), other.denominator()));
  }
}

bool QNumber::has_big_unit_denominator() const { return is_one(block()->denominator); }

/// The block that an operation on `a` writes its result to: a's own for a compound operator.
QNumber::Block& QNumber::room_for_result(QNumber const& a) {
  if (den != 0) {
    if (this == &a)
      make_big();
    else
      adopt(new Block);
  }
  return *block();
}

void QNumber::sum_big(QNumber const& a, QNumber const& b, Sign sign) {
  auto const accumulate = sign == Sign::plus ? mpz_add : mpz_sub;
  auto& [n, d] = room_for_result(a);
  IntegerView const an = a.numerator();
  IntegerView const ad = a.denominator();
  IntegerView const bn = b.numerator();
  IntegerView const bd = b.denominator();
  if (is_one(ad) && is_one(bd)) {
    accumulate(n, an, bn);
    mpz_set_ui(d, 1);
    return;
  }
  auto& [g, t1, t2, t3] = gmp_tmp;
  mpz_gcd(g, ad, bd);
  if (is_one(g)) {
    mpz_mul(t1, bn, ad);
    mpz_mul(t2, an, bd);
    accumulate(n, t2, t1);
    mpz_mul(d, ad, bd);
    return;
  }
  // Over the least common denominator only a factor of g can still cancel. n and d are written
  // last: they may be the operands.
  mpz_divexact(t1, ad, g);
  mpz_divexact(t2, bd, g);
  mpz_mul(t3, bn, t1);
  mpz_mul(t2, an, t2);
  accumulate(t2, t2, t3);
  mpz_gcd(t3, t2, g);
  mpz_mul(d, t1, cancelled(g, bd, t3));
  if (is_one(t3))
    mpz_set(n, t2);
  else
    mpz_divexact(n, t2, t3);
}

void QNumber::product_big(QNumber const& a, QNumber const& b) {
  // The one way out of big form.
  if (a.is_big() && !b.is_big() && b.is_zero() && !a.is_integer()) {
    if (is_big()) release_block();
    num = 0;
    den = 1;
    return;
  }
  auto& [n, d] = room_for_result(a);
  IntegerView const an = a.numerator();
  IntegerView const ad = a.denominator();
  IntegerView const bn = b.numerator();
  IntegerView const bd = b.denominator();
  if (is_one(ad) && is_one(bd)) {
    mpz_mul(n, an, bn);
    mpz_set_ui(d, 1);
  } else {
    multiply(n, d, an, ad, bn, bd);
  }
}

void QNumber::quotient_big(QNumber const& a, QNumber const& b) {
  assert(!b.is_zero());
  auto& [n, d] = room_for_result(a);
  if (this == &b) {
    mpz_set_ui(n, 1);
    mpz_set_ui(d, 1);
    return;
  }
  multiply(n, d, a.numerator(), a.denominator(), b.denominator(), b.numerator());
  make_denominator_positive(n, d);
}

QNumber QNumber::inv_big() const {
  // In lowest terms as before: only the sign can be in the wrong place.
  QNumber inverse;
  inverse.adopt(new Block(block()->denominator, block()->numerator));
  auto& [n, d] = *inverse.block();
  make_denominator_positive(n, d);
  return inverse;
}

QNumber QNumber::abs_big() const {
  QNumber absolute(*this);
  mpz_abs(absolute.block()->numerator, absolute.block()->numerator);
  return absolute;
}

QNumber QNumber::split_big() {
  QNumber whole(LowestTerms{IntegerView(0L), IntegerView(1L)});
  // gcd(n mod d, d) = gcd(n, d) = 1: the fraction stays in lowest terms.
  auto& [n, d] = *block();
  mpz_fdiv_qr(whole.block()->numerator, n, n, d);
  return whole;
}

bool QNumber::equal_big(QNumber const& a, QNumber const& b) {
  return mpz_cmp(a.numerator(), b.numerator()) == 0 &&
         mpz_cmp(a.denominator(), b.denominator()) == 0;
}

bool QNumber::less_big(QNumber const& a, QNumber const& b) {
  int const sign = a.sign();
  if (sign != b.sign()) return sign < b.sign();
  if (sign == 0) return false;
  IntegerView const an = a.numerator();
  IntegerView const ad = a.denominator();
  IntegerView const bn = b.numerator();
  IntegerView const bd = b.denominator();
  return sign * compare_products(an, bd, bn, ad, gmp_tmp[0], gmp_tmp[1]) < 0;
}

}  // namespace zelk
