#pragma once

#include <gmpxx.h>
#include <mpfr.h>

namespace zelk::test {

/// A real number known to lie between two floating-point numbers, hundreds of digits closer to each
/// other than any enclosure in the tests is to what it encloses.
class Real {
 public:
  Real() { mpfr_inits2(2048, below, above, nullptr); }
  Real(Real const&) = delete;
  Real& operator=(Real const&) = delete;
  ~Real() { mpfr_clears(below, above, nullptr); }

  void set_exp(mpq_class const& x) {
    mpfr_set_q(below, x.get_mpq_t(), MPFR_RNDD);
    mpfr_set_q(above, x.get_mpq_t(), MPFR_RNDU);
    mpfr_exp(below, below, MPFR_RNDD);
    mpfr_exp(above, above, MPFR_RNDU);
  }

  /// The sine or the cosine of x: it moves by no more than x, here by its rounding, less than one
  /// unit in the last place.
  void set_wave(mpq_class const& x, decltype(mpfr_sin)* wave) {
    bool const exact = mpfr_set_q(below, x.get_mpq_t(), MPFR_RNDN) == 0;
    mpq_class const moved = exact ? 0 : mpq_class(abs(x) >> 2047);
    wave(above, below, MPFR_RNDU);
    wave(below, below, MPFR_RNDD);
    mpfr_add_q(above, above, moved.get_mpq_t(), MPFR_RNDU);
    mpfr_sub_q(below, below, moved.get_mpq_t(), MPFR_RNDD);
  }

  void set_pi() {
    mpfr_const_pi(below, MPFR_RNDD);
    mpfr_const_pi(above, MPFR_RNDU);
  }

  /// Certainly lower <= this <= upper.
  bool is_between(mpq_class const& lower, mpq_class const& upper) const {
    return mpfr_cmp_q(below, lower.get_mpq_t()) >= 0 && mpfr_cmp_q(above, upper.get_mpq_t()) <= 0;
  }

 private:
  mpfr_t below;
  mpfr_t above;
};

}  // namespace zelk::test
