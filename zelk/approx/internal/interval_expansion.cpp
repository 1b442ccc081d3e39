#include "zelk/approx/internal/interval_expansion.h"

#include <algorithm>
#include <cassert>
#include <cstdint>

#include "zelk/numbers/internal/leading_bits.h"

namespace zelk::na {

namespace {

/// From here on the quotients of the leading half are found first, and taken off at once.
constexpr mp_bitcnt_t recursion_bits = 2000;

mp_bitcnt_t bits_of(Ratio const& x) {
  return std::max(mpz_sizeinbase(x.n, 2), mpz_sizeinbase(x.d, 2));
}

struct WordRatio {
  std::uint64_t n, d;
};

/// The leading 63 bits of the greater part, and the other's at the same places. Cut off, each part
/// lacks less than 1: what is added to n or d keeps the ratio above or below x.
WordRatio leading_word(Ratio const& x, WordRatio const& if_cut) {
  auto const size = static_cast<mp_size_t>(std::max(mpz_size(x.n), mpz_size(x.d)));
  int const unused = __builtin_clzl(mpz_getlimbn(x.n, size - 1) | mpz_getlimbn(x.d, size - 1));
  std::uint64_t const n = bits_below(x.n, size, unused);
  std::uint64_t const d = bits_below(x.d, size, unused);
  if (size == 1 && unused != 0) return {n, d};
  return {n + if_cut.n, d + if_cut.d};
}

/// The same with `bits` bits; the answer is how many are cut off.
mp_bitcnt_t set_leading(Ratio& cut, Ratio const& x, mp_bitcnt_t bits, WordRatio const& if_cut) {
  mp_bitcnt_t const own = bits_of(x);
  mp_bitcnt_t const shift = own > bits ? own - bits : 0;
  mpz_tdiv_q_2exp(cut.n, x.n, shift);
  mpz_tdiv_q_2exp(cut.d, x.d, shift);
  if (shift == 0) return 0;
  mpz_add_ui(cut.n, cut.n, if_cut.n);
  mpz_add_ui(cut.d, cut.d, if_cut.d);
  return shift;
}

/// `take_off` for an x whose leading part has left `rest` already. Both parts of what is left are
/// linear in both of x, so that only the bits cut off have to be multiplied.
void take_off(QuotientMatrix const& matrix, Ratio& x, Ratio& rest, mp_bitcnt_t shift,
              WordRatio const& if_cut, Integer& scratch) {
  if (shift != 0) {
    Ratio added;
    mpz_set_ui(added.n, if_cut.n);
    mpz_set_ui(added.d, if_cut.d);
    take_off(matrix, added, scratch);
    mpz_tdiv_r_2exp(x.n, x.n, shift);
    mpz_tdiv_r_2exp(x.d, x.d, shift);
    take_off(matrix, x, scratch);
    auto const join = [shift](Integer& leading, Integer const& removed, Integer const& low) {
      mpz_sub(leading, leading, removed);
      mpz_mul_2exp(leading, leading, shift);
      mpz_add(leading, leading, low);
    };
    join(rest.n, added.n, x.n);
    join(rest.d, added.d, x.d);
  }
  x.swap(rest);
}

constexpr WordRatio downwards{0, 1};
constexpr WordRatio upwards{1, 0};

}  // namespace

bool IntervalExpansion::split() {
  assert(mpz_sgn(lower.d.get()) > 0 && mpz_sgn(upper.d.get()) > 0);
  Integer quotient, lower_rest, upper_rest;
  mpz_fdiv_qr(quotient, lower_rest, lower.n, lower.d);
  if (mpz_sgn(lower_rest.get()) == 0) return false;
  mpz_set(upper_rest, upper.n);
  mpz_submul(upper_rest, quotient, upper.d);
  if (mpz_cmp(upper_rest, upper.d) >= 0) return false;

  split_off(quotient, lower_rest, upper_rest);
  return true;
}

void IntervalExpansion::split_off(Integer& quotient, Integer& lower_rest, Integer& upper_rest) {
  prefix.append(quotient.get());
  if (terms != nullptr) terms->push_back(QNumber::from_lowest_terms({quotient, Integer(1UL)}));
  mpz_swap(lower.n, upper.d);
  mpz_swap(upper.n, lower.d);
  mpz_swap(lower.d, upper_rest);
  mpz_swap(upper.d, lower_rest);
}

void IntervalExpansion::split_all() {
  if (mpz_sgn(lower.n.get()) < 0 && !split()) return;  // from there on the ends are positive
  mp_bitcnt_t part = 0;
  for (;;) {
    mp_bitcnt_t const bits = std::max(bits_of(lower), bits_of(upper));
    // Two calls with half of the bits leave about half of the bits.
    if (bits < part + part / 4 || part == 0) part = bits / 2;
    bool const is_ahead = bits < recursion_bits ? split_leading_word() : split_leading(part);
    if (!is_ahead && !split()) return;
  }
}

/// The quotients of an interval around this one, whose ends fit in words.
bool IntervalExpansion::split_leading_word() {
  WordRatio low = leading_word(lower, downwards);
  WordRatio high = leading_word(upper, upwards);
  WordMatrix matrix;
  for (;;) {
    std::uint64_t const quotient = low.n / low.d;
    std::uint64_t const low_rest = low.n - quotient * low.d;
    std::uint64_t const high_rest = high.n - quotient * high.d;
    if (low_rest == 0 || high_rest >= high.d) break;  // so also where high.d is 0
    matrix.append(quotient);
    if (terms != nullptr) terms->emplace_back(static_cast<long>(quotient));
    WordRatio const next{high.d, high_rest};
    high = {low.d, low_rest};
    low = next;
  }
  if (matrix.is_identity()) return false;
  take_off(matrix, lower, scratch);
  take_off(matrix, upper, scratch);
  append(matrix);
  return true;
}

/// The quotients of an interval around this one, whose ends have so many bits.
bool IntervalExpansion::split_leading(mp_bitcnt_t bits) {
  IntervalExpansion around;
  mp_bitcnt_t const lower_shift = set_leading(around.lower, lower, bits, downwards);
  mp_bitcnt_t const upper_shift = set_leading(around.upper, upper, bits, upwards);
  if (mpz_sgn(around.upper.d.get()) == 0) return false;
  around.terms = terms;
  around.split_all();
  if (around.prefix.is_identity()) return false;
  if (around.prefix.is_odd) around.lower.swap(around.upper);
  take_off(around.prefix, lower, around.lower, lower_shift, downwards, scratch);
  take_off(around.prefix, upper, around.upper, upper_shift, upwards, scratch);
  append(around.prefix);
  return true;
}

/// Appends the quotients that have been taken off both ends.
template <class Matrix>
void IntervalExpansion::append(Matrix const& matrix) {
  if (matrix.is_odd) lower.swap(upper);
  prefix.append(matrix, scratch);
}

}  // namespace zelk::na
