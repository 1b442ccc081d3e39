#include "zelk/numbers/q_number.h"

#include <numeric>

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

bool is_one(mpz_srcptr n) { return mpz_cmp_ui(n, 1) == 0; }

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

/// n/d *= bn/bd, crosswise cancelled. All four scratch integers are filled before n or d is
/// written, so that bn and bd may be n and d themselves, in either order.
void multiply(mpz_ptr n, mpz_ptr d, mpz_srcptr bn, mpz_srcptr bd) {
  auto& [t0, t1, t2, t3] = QNumber::gmp_tmp;
  mpz_gcd(t0, n, bd);
  mpz_gcd(t1, bn, d);
  mpz_divexact(t2, n, t0);
  mpz_divexact(t3, bd, t0);
  mpz_divexact(t0, bn, t1);
  mpz_divexact(t1, d, t1);
  mpz_mul(n, t2, t0);
  mpz_mul(d, t1, t3);
}

bool fits_word(mpz_srcptr n) { return mpz_fits_slong_p(n) != 0 && mpz_get_si(n) != LONG_MIN; }

}  // namespace

void detail::remember_gcd(long a, long b) { gcd_cache[b][a] = gcd_cache[a][b] = std::gcd(a, b); }

QNumber QNumber::from_mpz(mpz_srcptr numerator, mpz_srcptr denominator) {
  assert(mpz_sgn(denominator) != 0);
  if (fits_word(numerator) && fits_word(denominator))
    return {mpz_get_si(numerator), mpz_get_si(denominator)};
  QNumber big;
  big.adopt(new Block(numerator, denominator));
  big.normalise_big();
  auto& [n, d] = *big.block();
  if (!fits_word(n) || !fits_word(d)) return big;
  QNumber small;
  small.num = mpz_get_si(n);
  small.den = mpz_get_si(d);
  return small;
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

void QNumber::add_big(QNumber const& b, Sign sign) {
  if (den != 0) make_big();
  auto const accumulate = sign == Sign::plus ? mpz_add : mpz_sub;
  auto& [n, d] = *block();
  IntegerView const bn = b.numerator();
  IntegerView const bd = b.denominator();
  if (is_one(d) && is_one(bd)) {
    accumulate(n, n, bn);
    return;
  }
  auto& [g, t1, t2, t3] = gmp_tmp;
  mpz_gcd(g, d, bd);
  if (is_one(g)) {
    mpz_mul(t1, bn, d);
    mpz_mul(n, n, bd);
    accumulate(n, n, t1);
    mpz_mul(d, d, bd);
    return;
  }
  // Only a factor of g can still cancel. n and d are written last: b may be this number.
  mpz_divexact(t1, d, g);
  mpz_divexact(t2, bd, g);
  mpz_mul(t3, bn, t1);
  mpz_mul(t2, n, t2);
  accumulate(t2, t2, t3);
  mpz_gcd(t3, t2, g);
  mpz_srcptr const rest = cancelled(g, bd, t3);
  if (is_one(t3))
    mpz_swap(n, t2);
  else
    mpz_divexact(n, t2, t3);
  mpz_mul(d, t1, rest);
}

void QNumber::multiply_big(QNumber const& b) {
  if (den != 0) make_big();
  auto& [n, d] = *block();
  IntegerView const bn = b.numerator();
  IntegerView const bd = b.denominator();
  if (is_one(d) && is_one(bd)) {
    mpz_mul(n, n, bn);
  } else if (!b.is_big() && b.is_zero()) {
    release_block();
    num = 0;
    den = 1;
  } else {
    multiply(n, d, bn, bd);
  }
}

void QNumber::divide_big(QNumber const& b) {
  assert(!b.is_zero());
  if (den != 0) make_big();
  auto& [n, d] = *block();
  multiply(n, d, b.denominator(), b.numerator());
  make_denominator_positive(n, d);
}

QNumber QNumber::inv_big() const {
  QNumber inverse;
  inverse.adopt(new Block(block()->denominator, block()->numerator));
  // Already in lowest terms: only the sign can be in the wrong place.
  make_denominator_positive(inverse.block()->numerator, inverse.block()->denominator);
  return inverse;
}

QNumber QNumber::abs_big() const {
  QNumber absolute(*this);
  mpz_abs(absolute.block()->numerator, absolute.block()->numerator);
  return absolute;
}

QNumber QNumber::split_big() {
  QNumber whole;
  whole.adopt(new Block(0, 1));
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
  if (is_one(ad) && is_one(bd)) return mpz_cmp(an, bn) < 0;
  // A product of an x-bit and a y-bit integer has x + y or x + y - 1 bits.
  auto const bits = [](mpz_srcptr x, mpz_srcptr y) {
    return mpz_sizeinbase(x, 2) + mpz_sizeinbase(y, 2);
  };
  size_t const left = bits(an, bd);
  size_t const right = bits(bn, ad);
  if (left + 1 < right) return sign > 0;
  if (right + 1 < left) return sign < 0;
  mpz_mul(gmp_tmp[0], an, bd);
  mpz_mul(gmp_tmp[1], bn, ad);
  return mpz_cmp(gmp_tmp[0], gmp_tmp[1]) < 0;
}

}  // namespace zelk
