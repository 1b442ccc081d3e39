#pragma once

#include <gmpxx.h>

#include "zelk/convert/gmp_types.h"

/// As gmp_types.h, for the classes of GMP's C++ interface. Only this header needs gmpxx.h, and
/// nothing in it needs the library behind that.
namespace zelk::convert {

/// The exact values. Throws: std::invalid_argument when the denominator of q is 0.
inline QNumber from_mpz(mpz_class const& n) { return from_mpz(n.get_mpz_t()); }
inline QNumber from_mpq(mpq_class const& q) { return from_mpq(q.get_mpq_t()); }

/// Throws: std::invalid_argument when q is not an integer.
inline mpz_class to_mpz_class(QNumber const& q) {
  mpz_class n;
  to_mpz(n.get_mpz_t(), q);
  return n;
}

/// The exact value.
inline mpq_class to_mpq_class(QNumber const& q) {
  mpq_class result;
  to_mpq(result.get_mpq_t(), q);
  return result;
}

}  // namespace zelk::convert
