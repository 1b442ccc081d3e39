#pragma once

#include <gmp.h>

#include <algorithm>
#include <string>
#include <utility>

#include "zelk/numbers/q_number.h"
#include "zelk/work/poll.h"

namespace zelk::verify {

/// An integer of any size, with the operators that the checks are written in. Divisions, shifts
/// to the right and square roots are floors.
class Whole {
 public:
  Whole(long n = 0) { mpz_init_set_si(own, n); }
  explicit Whole(mpz_srcptr n) { mpz_init_set(own, n); }
  /// Requires: digits, behind a sign or not.
  explicit Whole(std::string const& digits) { mpz_init_set_str(own, digits.c_str(), 10); }
  Whole(Whole const& other) { mpz_init_set(own, other.own); }
  Whole(Whole&& other) noexcept {
    mpz_init(own);
    mpz_swap(own, other.own);
  }
  Whole& operator=(Whole const& other) {
    mpz_set(own, other.own);
    return *this;
  }
  Whole& operator=(Whole&& other) noexcept {
    mpz_swap(own, other.own);
    return *this;
  }
  ~Whole() { mpz_clear(own); }

  friend Whole operator-(Whole a) {
    mpz_neg(a.own, a.own);
    return a;
  }
  friend Whole operator+(Whole a, Whole const& b) {
    mpz_add(a.own, a.own, b.own);
    return a;
  }
  friend Whole operator-(Whole a, Whole const& b) {
    mpz_sub(a.own, a.own, b.own);
    return a;
  }
  friend Whole operator*(Whole const& a, Whole const& b) {
    poll_products(a, b);
    Whole product;
    mpz_mul(product.own, a.own, b.own);
    return product;
  }
  friend Whole operator/(Whole a, Whole const& b) {
    poll_products(a, b, 4);
    mpz_fdiv_q(a.own, a.own, b.own);
    return a;
  }
  friend Whole operator<<(Whole a, long by) {
    mpz_mul_2exp(a.own, a.own, static_cast<mp_bitcnt_t>(by));
    return a;
  }
  friend Whole operator>>(Whole a, long by) {
    mpz_fdiv_q_2exp(a.own, a.own, static_cast<mp_bitcnt_t>(by));
    return a;
  }

  friend bool operator==(Whole const& a, Whole const& b) { return mpz_cmp(a.own, b.own) == 0; }
  friend auto operator<=>(Whole const& a, Whole const& b) { return mpz_cmp(a.own, b.own) <=> 0; }

  int sign() const { return mpz_sgn(own); }
  bool is_odd() const { return mpz_odd_p(own) != 0; }

  /// Of the magnitude; 0 has none.
  long bits() const { return sign() == 0 ? 0 : static_cast<long>(mpz_sizeinbase(own, 2)); }

  long to_long() const { return mpz_get_si(own); }
  mpz_srcptr get() const { return own; }

  friend Whole square_root(Whole a) {
    poll_products(a, a, 4);
    mpz_sqrt(a.own, a.own);
    return a;
  }
  friend Whole gcd(Whole a, Whole const& b) {
    poll_products(a, b, 16);
    mpz_gcd(a.own, a.own, b.own);
    return a;
  }

 private:
  static void poll_products(Whole const& a, Whole const& b, double count = 1) {
    work::poll_products(static_cast<mp_size_t>(std::max(mpz_size(a.own), mpz_size(b.own))), count);
  }

  mpz_t own;
};

inline Whole magnitude_of(Whole const& a) { return a.sign() < 0 ? -a : a; }

inline Whole above(QNumber const& q) { return Whole(q.numerator().get()); }
inline Whole below(QNumber const& q) { return Whole(q.denominator().get()); }

}  // namespace zelk::verify
