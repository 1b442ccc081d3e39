#pragma once

#include <gmp.h>
#include <gmpxx.h>

#include <stdexcept>
#include <type_traits>

#include "zelk/numbers/integer_view.h"
#include "zelk/numbers/q_number.h"

/// Values from and to GMP's own types, for programs in which both live: `mpz_t` and `mpq_t`, and
/// the classes of its C++ interface, of which nothing but the header is needed. Targets come first
/// and are initialised already, as everywhere in GMP; nothing is shared afterwards.
///
/// Cost: linear in the size of the number, plus a gcd for fractions.
namespace zelk::convert {

/// `n`, in small form if it fits.
inline QNumber from_mpz(mpz_srcptr n) { return QNumber::from_mpz(n, IntegerView(1)); }

/// The same of the class.
inline QNumber from_mpz(mpz_class const& n) { return from_mpz(n.get_mpz_t()); }

/// The value of `q`, in small form if it fits. The fraction need not be canonical: common factors
/// and a negative denominator are fine.
///
/// Throws: std::invalid_argument when the denominator is zero.
inline QNumber from_mpq(mpq_srcptr q) {
  if (mpz_sgn(mpq_denref(q)) == 0) throw std::invalid_argument("zero denominator");
  return QNumber::from_mpz(mpq_numref(q), mpq_denref(q));
}

/// The same of the class.
inline QNumber from_mpq(mpq_class const& q) { return from_mpq(q.get_mpq_t()); }

/// Machine numbers: `mpz_class` would cut them to integers, and 0 is a null pointer too.
template <class T>
requires(std::is_arithmetic_v<T> || std::is_null_pointer_v<T>) QNumber from_mpz(T)
= delete;
template <class T>
requires(std::is_arithmetic_v<T> || std::is_null_pointer_v<T>) QNumber from_mpq(T)
= delete;

/// Assigns the integer that `q` is. There is no rounding: that of quotients is `mpz_fdiv_q` and its
/// kin, which take `q.numerator()` and `q.denominator()`.
///
/// Throws: std::invalid_argument when q is not an integer; the target is then as it was.
inline void to_mpz(mpz_ptr target, QNumber const& q) {
  if (!q.is_integer()) throw std::invalid_argument("the number is not an integer");
  mpz_set(target, q.numerator());
}

/// As `to_mpz`, into a new object.
inline mpz_class to_mpz_class(QNumber const& q) {
  mpz_class n;
  to_mpz(n.get_mpz_t(), q);
  return n;
}

/// Assigns `q`, canonical.
inline void to_mpq(mpq_ptr target, QNumber const& q) {
  mpz_set(mpq_numref(target), q.numerator());
  mpz_set(mpq_denref(target), q.denominator());
}

/// As `to_mpq`, into a new object.
inline mpq_class to_mpq_class(QNumber const& q) {
  mpq_class result;
  to_mpq(result.get_mpq_t(), q);
  return result;
}

}  // namespace zelk::convert
