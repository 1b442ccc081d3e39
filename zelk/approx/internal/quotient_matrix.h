#pragma once

#include <cstdint>

#include <gmp.h>

#include "zelk/approx/internal/convergent_recurrence.h"
#include "zelk/approx/internal/ratio.h"

namespace zelk::na {

/// Some partial quotients [a0; a1, ...] as the matrix (h h0; k k0) of their last two convergents,
/// in words: what is left after them, y, makes the number (h y + h0) / (k y + k0). Of no quotients
/// it is the identity, and the only one with k = 0.
///
/// Requires: a ratio of two words begins with the quotients and goes on; then no entry exceeds its
/// parts.
struct WordMatrix {
  /// One more quotient.
  void append(std::uint64_t term) {
    std::uint64_t const next_h = term * h + h0;
    std::uint64_t const next_k = term * k + k0;
    h0 = h;
    k0 = k;
    h = next_h;
    k = next_k;
    is_odd = !is_odd;
  }
  bool is_identity() const { return k == 0; }

  std::uint64_t h = 1, h0 = 0, k = 0, k0 = 1;
  bool is_odd = false;  // the determinant is -1 after an odd number of quotients, otherwise 1
};

/// The same in integers of any size.
struct QuotientMatrix : ConvergentRecurrence {
  void append(mpz_srcptr term) {
    ConvergentRecurrence::append(term);
    is_odd = !is_odd;
  }
  bool is_identity() const { return mpz_sgn(k.get()) == 0; }

  /// All quotients of `more`, a matrix of either kind. Changes `scratch`.
  template <class Matrix>
  void append(Matrix const& more, Integer& scratch);

  bool is_odd = false;
};

namespace detail {

inline void set_product(mpz_ptr r, mpz_srcptr a, std::uint64_t b) { mpz_mul_ui(r, a, b); }
inline void set_product(mpz_ptr r, mpz_srcptr a, mpz_srcptr b) { mpz_mul(r, a, b); }
inline void add_product(mpz_ptr r, mpz_srcptr a, std::uint64_t b) { mpz_addmul_ui(r, a, b); }
inline void add_product(mpz_ptr r, mpz_srcptr a, mpz_srcptr b) { mpz_addmul(r, a, b); }
inline void sub_product(mpz_ptr r, mpz_srcptr a, std::uint64_t b) { mpz_submul_ui(r, a, b); }
inline void sub_product(mpz_ptr r, mpz_srcptr a, mpz_srcptr b) { mpz_submul(r, a, b); }

}  // namespace detail

/// One row of a matrix of quotients, after those of `more` have been appended to it: of it the
/// other row is not needed. Changes `scratch`.
template <class Matrix>
void append_to_row(Integer& left, Integer& right, Matrix const& more, Integer& scratch) {
  detail::set_product(scratch, left, more.h);
  detail::add_product(scratch, right, more.k);
  mpz_swap(scratch, left);  // `scratch` is the old entry from here on
  detail::set_product(right, right, more.k0);
  detail::add_product(right, scratch, more.h0);
}

template <class Matrix>
void QuotientMatrix::append(Matrix const& more, Integer& scratch) {
  append_to_row(h, h0, more, scratch);
  append_to_row(k, k0, more, scratch);
  is_odd = is_odd != more.is_odd;
}

/// Replaces x by what is left of it after the quotients of `matrix`:
/// y = (k0 x - h0) / (h - k x). Requires: x begins with these quotients. Changes `scratch`.
template <class Matrix>
void take_off(Matrix const& matrix, Ratio& x, Integer& scratch) {
  detail::set_product(scratch, x.n, matrix.k0);
  detail::sub_product(scratch, x.d, matrix.h0);
  detail::set_product(x.d, x.d, matrix.h);
  detail::sub_product(x.d, x.n, matrix.k);
  mpz_swap(x.n, scratch);
  if (!matrix.is_odd) return;
  mpz_neg(x.n, x.n);
  mpz_neg(x.d, x.d);
}

}  // namespace zelk::na
