#include "zelk/approx/internal/narrow_expansion.h"

#include <cstdint>

#include "zelk/approx/internal/interval_expansion.h"
#include "zelk/approx/internal/leading_part.h"
#include "zelk/work/poll.h"

namespace zelk::na {

namespace {

/// Where the leading half begins to be quicker than words: later than with two ends to carry.
constexpr mp_bitcnt_t words_up_to = 4000;

/// The quotients of the simplest number in [low, high]. None is too great for a word: low itself
/// has no greater parts. Requires: 1 <= low <= high, which may be infinite.
WordMatrix quotients_of_simplest(WordRatio low, WordRatio high) {
  WordMatrix matrix;
  for (;;) {
    std::uint64_t const quotient = low.n / low.d;
    std::uint64_t const low_rest = low.n - quotient * low.d;
    std::uint64_t const high_rest = high.n - quotient * high.d;
    bool const is_bounded = high_rest < high.d;
    if (low_rest == 0 || !is_bounded) {
      matrix.append(low_rest == 0 ? quotient : quotient + 1);
      return matrix;
    }
    matrix.append(quotient);
    WordRatio const next{high.d, high_rest};
    high = {low.d, low_rest};
    low = next;
  }
}

}  // namespace

NarrowExpansion::NarrowExpansion(mpz_srcptr lower, unsigned long interval_width,
                                 mp_bitcnt_t binary_places)
    : width(interval_width), places(binary_places) {
  // Nothing grows beyond that.
  for (Integer* each : {&end.n, &end.d, &other.n, &other.d, &scratch, &k, &k0})
    mpz_realloc2(*each, places + 128);
  // The first quotient is the floor, whatever it is.
  mpz_setbit(end.n, places);
  mpz_fdiv_r_2exp(end.d, lower, places);
}

bool NarrowExpansion::split_all() {
  mpz_add_ui(scratch, end.d, width);
  if (mpz_sgn(end.d.get()) == 0 || mpz_cmp(scratch, end.n) >= 0) return false;
  mp_bitcnt_t part = 0;
  for (bool is_ahead = true; is_ahead;) {
    set_rest(other, width);
    mp_bitcnt_t const bits = bits_of(end);
    if (bits < part + part / 4 || part == 0) part = bits / 2;
    poll_step(bits);
    is_ahead = bits < words_up_to ? split_leading_word() : split_leading(part);
  }
  return true;
}

bool NarrowExpansion::split_leading_word() {
  auto const matrix =
      common_quotients(leading_word(is_odd ? other : end, downwards),
                       leading_word(is_odd ? end : other, upwards), [](std::uint64_t) {});
  if (matrix.is_identity()) return false;
  take_off(matrix, end, scratch);
  append_to_row(k, k0, matrix, scratch);
  is_odd = is_odd != matrix.is_odd;
  return true;
}

bool NarrowExpansion::split_leading(mp_bitcnt_t bits) {
  IntervalExpansion around;
  Ratio& leading = is_odd ? around.upper : around.lower;
  auto const& if_cut = is_odd ? upwards : downwards;
  mp_bitcnt_t const shift = set_leading(leading, end, bits, if_cut);
  set_leading(is_odd ? around.lower : around.upper, other, bits, is_odd ? downwards : upwards);
  if (mpz_sgn(around.upper.d.get()) == 0) return false;
  around.split_all();
  auto const& matrix = around.prefix;
  if (matrix.is_identity()) return false;
  if (matrix.is_odd) around.lower.swap(around.upper);
  work::poll(8 * work::product(static_cast<double>(bits)));
  take_off(matrix, end, leading, shift, if_cut, scratch);
  append_to_row(k, k0, matrix, scratch);
  is_odd = is_odd != matrix.is_odd;
  return true;
}

void NarrowExpansion::set_rest(Ratio& rest, unsigned long offset) const {
  mpz_mul_ui(rest.n, k0, offset);
  mpz_mul_ui(rest.d, k, offset);
  if (is_odd) {
    mpz_sub(rest.n, end.n, rest.n);
    mpz_add(rest.d, end.d, rest.d);
  } else {
    mpz_add(rest.n, end.n, rest.n);
    mpz_sub(rest.d, end.d, rest.d);
  }
}

void NarrowExpansion::set_least_denominator(Integer& q, unsigned long first, unsigned long last) {
  set_rest(other, is_odd ? last : first);
  auto const low = leading_word(other, downwards);
  set_rest(other, is_odd ? first : last);
  auto const matrix = quotients_of_simplest(low, leading_word(other, upwards));
  mpz_mul_ui(q, k, matrix.h);
  mpz_addmul_ui(q, k0, matrix.k);
}

}  // namespace zelk::na
