#include "zelk/numbers/q_number.h"

#include <algorithm>
#include <numeric>

#include "zelk/numbers/errors.h"
#include "zelk/numbers/integer.h"
#include "zelk/numbers/internal/fixed_number.h"
#include "zelk/numbers/internal/leading_bits.h"
#include "zelk/numbers/internal/scratch.h"
#include "zelk/work/poll.h"

namespace zelk {

namespace {

using detail::scratch;

/// Requires: n > 0.
bool is_one(mpz_srcptr n) {
  assert(mpz_sgn(n) > 0);
  return mpz_getlimbn(n, 0) == 1 && mpz_size(n) == 1;
}

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
  auto& gcd = scratch()[0];
  mpz_gcd(gcd, n, d);
  if (!is_one(gcd)) {
    mpz_divexact(n, n, gcd);
    mpz_divexact(d, d, gcd);
  }
  make_denominator_positive(n, d);
}

/// n/d = an/ad * bn/bd, cancelled crosswise. n and d may be an and ad, and bn and bd too.
void multiply(mpz_ptr n, mpz_ptr d, mpz_srcptr an, mpz_srcptr ad, mpz_srcptr bn, mpz_srcptr bd) {
  auto& [t0, t1, t2, t3] = scratch();
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

/// A read-only integer of two words.
class WideView {
 public:
  __extension__ using DoubleWord = __int128;

  explicit WideView(DoubleWord n) {
    __extension__ using Magnitude = unsigned __int128;
    Magnitude const magnitude = n < 0 ? -static_cast<Magnitude>(n) : static_cast<Magnitude>(n);
    limbs[0] = static_cast<mp_limb_t>(magnitude);
    limbs[1] = static_cast<mp_limb_t>(magnitude >> GMP_NUMB_BITS);
    mpz_roinit_n(own, limbs, n < 0 ? -2 : 2);
  }
  WideView(WideView const&) = delete;
  WideView& operator=(WideView const&) = delete;
  ~WideView() = default;

  operator mpz_srcptr() const { return own; }

 private:
  mp_limb_t limbs[2];
  mpz_t own;
};

/// Before what may take gcds of two such integers, and before anything is written: of short ones
/// nobody is asked.
void poll_gcds(mpz_srcptr a, mpz_srcptr b) {
  constexpr std::size_t most_unasked = 128;
  if (auto const size = mpz_size(a) + mpz_size(b); size > most_unasked) [[unlikely]]
    work::poll(2 * work::gcd(64.0 * static_cast<double>(size)));
}

/// Throws: DivisionByZero when the divisor is 0.
void require_divisor(mpz_srcptr divisor) {
  if (mpz_sgn(divisor) == 0) throw DivisionByZero("division by zero");
}

}  // namespace

QNumber QNumber::from_mpz(mpz_srcptr numerator, mpz_srcptr denominator) {
  if (fits_word(numerator) && fits_word(denominator))
    return {mpz_get_si(numerator), mpz_get_si(denominator)};
  QNumber reduced = big_from_mpz(numerator, denominator);
  auto const& [n, d] = *reduced.block();
  if (fits_word(n) && fits_word(d)) return reduced.to_small();
  return reduced;
}

QNumber QNumber::big_from_mpz(mpz_srcptr numerator, mpz_srcptr denominator) {
  require_divisor(denominator);
  poll_gcds(numerator, denominator);
  QNumber big;
  big.adopt(new Block(numerator, denominator));
  big.normalise_big();
  return big;
}

QNumber::QNumber(LowestTerms const& fraction) : QNumber() {
  require_divisor(fraction.denominator);
  adopt(new Block(fraction.numerator, fraction.denominator));
  assert(is_canonical());
}

QNumber::Block::Block(detail::FixedFraction const& fixed) {
  static_assert(sizeof(Block) % alignof(mp_limb_t) == 0);
  auto* digits = reinterpret_cast<mp_limb_t*>(this + 1);
  auto const put = [&digits](mpz_ptr own, mpz_srcptr n) {
    auto* const end = std::copy_n(mpz_limbs_read(n), mpz_size(n), digits);
    mpz_roinit_n(own, std::exchange(digits, end), n->_mp_size);
  };
  put(numerator, fixed.numerator);
  put(denominator, fixed.denominator);
}

QNumber::QNumber(detail::FixedFraction const& fixed) : QNumber() {
  auto const size = mpz_size(fixed.numerator) + mpz_size(fixed.denominator);
  adopt(new (size * sizeof(mp_limb_t)) Block(fixed));
  assert(is_canonical());
}

QNumber::Block::Block(detail::SharedDigits const& shared) {
  auto const& [n, d] = *shared.number.block();
  mpz_roinit_n(numerator, mpz_limbs_read(n), n->_mp_size);
  mpz_roinit_n(denominator, mpz_limbs_read(d), d->_mp_size);
}

QNumber::QNumber(detail::SharedDigits const& shared) : QNumber() {
  assert(shared.number.is_big());
  adopt(new Block(shared));
}

QNumber QNumber::from_lowest_terms(LowestTerms const& fraction) {
  require_divisor(fraction.denominator);  // as a word, 0 would mark the big form
  if (!fits_word(fraction.numerator) || !fits_word(fraction.denominator)) return QNumber(fraction);
  QNumber small;
  small.num = mpz_get_si(fraction.numerator);
  small.den = mpz_get_si(fraction.denominator);
  assert(small.is_canonical());
  return small;
}

bool QNumber::is_canonical() const {
  if (den != 0) return num != LONG_MIN && den > 0 && std::gcd(num, den) == 1;
  Integer gcd;  // not scratch, which may be what the parts were made of
  mpz_gcd(gcd, block()->numerator, block()->denominator);
  return mpz_sgn(block()->denominator) > 0 && is_one(gcd);
}

/// The words are a fraction that small form does not hold: one of them is -2^63, or the denominator
/// is 0.
void QNumber::become_extreme() {
  IntegerView const d(den);
  *this = big_from_mpz(IntegerView(num), d);
}

void QNumber::become_unsigned(unsigned long n, unsigned long d, bool is_negative) {
  Integer numerator(n);
  if (is_negative) mpz_neg(numerator, numerator);
  *this = big_from_mpz(numerator, Integer(d));
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

/// One of the two numbers is in big form. What this one holds afterwards was the other's, block and
/// all, or stands in this one's own block.
void QNumber::take_big(QNumber& other) noexcept {
  if (other.is_big()) {
    swap(*this, other);
    if (this == &other) return;
    if (other.is_big()) other.release_block();
  } else {
    mpz_set_si(block()->numerator, other.num);
    mpz_set_si(block()->denominator, other.den);
  }
  other.become_zero();
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

/// n/d in big form. Requires: lowest terms, and small form so far.
void QNumber::become_wide(DoubleWord n, DoubleWord d) {
  WideView const numerator(n);
  WideView const denominator(d);
  adopt(new Block(numerator, denominator));
}

/// a + bn/bd, where g is the gcd of the denominators. Products of two words fit in two words, and
/// so does the sum of two of them.
void QNumber::sum_wide(QNumber const& a, long bn, long bd, long g) {
  DoubleWord s =
      static_cast<DoubleWord>(a.num) * (bd / g) + static_cast<DoubleWord>(bn) * (a.den / g);
  if (g == 1) return become_wide(s, static_cast<DoubleWord>(a.den) * bd);
  long const g2 = std::gcd(static_cast<long>(s % g), g);
  become_wide(s / g2, static_cast<DoubleWord>(a.den / g) * (bd / g2));
}

void QNumber::product_wide(long n1, long n2, long d1, long d2) {
  become_wide(static_cast<DoubleWord>(n1) * n2, static_cast<DoubleWord>(d1) * d2);
}

void QNumber::sum_big(QNumber const& a, QNumber const& b, Sign sign) {
  auto const accumulate = sign == Sign::plus ? mpz_add : mpz_sub;
  IntegerView const an = a.numerator();
  IntegerView const ad = a.denominator();
  IntegerView const bn = b.numerator();
  IntegerView const bd = b.denominator();
  poll_gcds(ad, bd);
  auto& [n, d] = room_for_result(a);
  if (is_one(ad) && is_one(bd)) {
    accumulate(n, an, bn);
    mpz_set_ui(d, 1);
    return;
  }
  auto& [g, t1, t2, t3] = scratch();
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
    become_zero();
    return;
  }
  IntegerView const an = a.numerator();
  IntegerView const ad = a.denominator();
  IntegerView const bn = b.numerator();
  IntegerView const bd = b.denominator();
  poll_gcds(ad, bd);
  auto& [n, d] = room_for_result(a);
  if (is_one(ad) && is_one(bd)) {
    mpz_mul(n, an, bn);
    mpz_set_ui(d, 1);
  } else {
    multiply(n, d, an, ad, bn, bd);
  }
}

void QNumber::quotient_big(QNumber const& a, QNumber const& b) {
  if (!b.is_big()) return product_big(a, b.inv());
  require_divisor(b.numerator());
  poll_gcds(a.denominator(), b.numerator());
  auto& [n, d] = room_for_result(a);
  multiply(n, d, a.numerator(), a.denominator(), b.denominator(), b.numerator());
  make_denominator_positive(n, d);
}

QNumber QNumber::inv_big() const {
  require_divisor(block()->numerator);
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
  auto& [left, right, t2, t3] = scratch();
  return sign * compare_products(an, bd, bn, ad, left, right) < 0;
}

}  // namespace zelk
