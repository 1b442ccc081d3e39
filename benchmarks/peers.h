#pragma once

#include <gmpxx.h>

#include <boost/multiprecision/cpp_int.hpp>
#include <utility>

#include "zelk/numbers/q_number.h"

// After the others: it defines the words slong and ulong as macros.
#include <arb.h>
#include <flint/fmpq.h>

/// The rationals of the peers, and the way from one to another, for operands and answers.
namespace zelk::bench {

using boost::multiprecision::cpp_rational;

/// FLINT's rational. The operators are for what reads as a formula; timed single operations call
/// FLINT themselves, which writes into a variable in place.
class Fmpq {
 public:
  Fmpq() { fmpq_init(own); }
  explicit Fmpq(unsigned long n) : Fmpq() { fmpq_set_ui(own, n, 1); }
  explicit Fmpq(mpq_class const& q) : Fmpq() { fmpq_set_mpq(own, q.get_mpq_t()); }
  Fmpq(Fmpq const& other) : Fmpq() { fmpq_set(own, other.own); }
  Fmpq(Fmpq&& other) noexcept : Fmpq() { fmpq_swap(own, other.own); }
  ~Fmpq() { fmpq_clear(own); }

  Fmpq& operator=(Fmpq const& other) {
    fmpq_set(own, other.own);
    return *this;
  }
  Fmpq& operator=(Fmpq&& other) noexcept {
    fmpq_swap(own, other.own);
    return *this;
  }

  operator fmpq*() { return own; }
  operator fmpq const*() const { return own; }

  Fmpq& operator+=(Fmpq const& b) { return fmpq_add(own, own, b), *this; }
  Fmpq& operator-=(Fmpq const& b) { return fmpq_sub(own, own, b), *this; }
  Fmpq& operator*=(Fmpq const& b) { return fmpq_mul(own, own, b), *this; }
  Fmpq& operator/=(Fmpq const& b) { return fmpq_div(own, own, b), *this; }
  friend Fmpq operator+(Fmpq a, Fmpq const& b) { return std::move(a += b); }
  friend Fmpq operator-(Fmpq a, Fmpq const& b) { return std::move(a -= b); }
  friend Fmpq operator*(Fmpq a, Fmpq const& b) { return std::move(a *= b); }
  friend Fmpq operator/(Fmpq a, Fmpq const& b) { return std::move(a /= b); }
  friend bool operator<(Fmpq const& a, Fmpq const& b) { return fmpq_cmp(a, b) < 0; }

  /// The greatest integer in q.
  friend Fmpq floor(Fmpq const& q) {
    Fmpq whole;
    fmpz_fdiv_q(fmpq_numref(whole.own), fmpq_numref(q.own), fmpq_denref(q.own));
    return whole;
  }

 private:
  fmpq_t own;
};

/// A ball as two exact rationals.
inline std::pair<Fmpq, Fmpq> ends_of(arb_t const ball) {
  arf_t end;
  arf_init(end);
  std::pair<Fmpq, Fmpq> ends;
  arb_get_lbound_arf(end, ball, ARF_PREC_EXACT);
  arf_get_fmpq(ends.first, end);
  arb_get_ubound_arf(end, ball, ARF_PREC_EXACT);
  arf_get_fmpq(ends.second, end);
  arf_clear(end);
  return ends;
}

inline mpq_class floor(mpq_class const& q) {
  mpq_class whole;
  mpz_fdiv_q(whole.get_num_mpz_t(), q.get_num_mpz_t(), q.get_den_mpz_t());
  return whole;
}

template <class Q>
Q from_mpq(mpq_class const& q) {
  return Q(q);
}
template <>
inline QNumber from_mpq(mpq_class const& q) {
  return QNumber::from_mpz(q.get_num_mpz_t(), q.get_den_mpz_t());
}
template <>
inline cpp_rational from_mpq(mpq_class const& q) {
  return cpp_rational(q.get_str());
}

inline mpq_class to_mpq(bool truth) { return truth ? 1 : 0; }
inline mpq_class to_mpq(mpq_class const& q) { return q; }
inline mpq_class to_mpq(cpp_rational const& q) { return mpq_class(q.str()); }
inline mpq_class to_mpq(QNumber const& q) {
  return {mpz_class(q.numerator().get()), mpz_class(q.denominator().get())};
}
inline mpq_class to_mpq(Fmpq const& q) {
  mpq_class result;
  fmpq_get_mpq(result.get_mpq_t(), q);
  return result;
}

}  // namespace zelk::bench
