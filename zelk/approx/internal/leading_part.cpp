#include "zelk/approx/internal/leading_part.h"

#include <algorithm>

#include "zelk/numbers/internal/leading_bits.h"

namespace zelk::na {

mp_bitcnt_t bits_of(Ratio const& x) {
  return std::max(mpz_sizeinbase(x.n, 2), mpz_sizeinbase(x.d, 2));
}

WordRatio leading_word(Ratio const& x, WordRatio const& if_cut) {
  auto const size = static_cast<mp_size_t>(std::max(mpz_size(x.n), mpz_size(x.d)));
  int const unused = __builtin_clzl(mpz_getlimbn(x.n, size - 1) | mpz_getlimbn(x.d, size - 1));
  std::uint64_t const n = bits_below(x.n, size, unused);
  std::uint64_t const d = bits_below(x.d, size, unused);
  if (size == 1 && unused != 0) return {n, d};
  return {n + if_cut.n, d + if_cut.d};
}

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

// Both parts of what is left are linear in both of x, so that only the bits cut off have to be
// multiplied.
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

}  // namespace zelk::na
