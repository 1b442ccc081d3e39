#pragma once

#include <gmpxx.h>

#include <climits>
#include <cstdint>
#include <random>

#include "zelk/numbers/q_number.h"

/// Numbers for tests, drawn from the corners: where words end, where products of words begin to
/// overflow, where numbers share factors. Every choice is a byte from `next`, a callable that
/// yields one at a time, so that random tests and fuzzing draw from the same generators.
namespace zelk::test {

/// A source of random bytes.
inline auto random_bytes(unsigned seed) {
  return [engine = std::mt19937(seed)]() mutable { return static_cast<unsigned>(engine() >> 24); };
}

/// Any machine word, -2^63 among them.
template <class Next>
long corner_word(Next& next) {
  unsigned const shape = next();
  std::uint64_t const detail = next();
  std::uint64_t n = 1;
  switch (shape / 2 % 7) {
    case 0:
      n = detail % 16;
      break;
    case 1:  // beside a power of two
      n = (n << detail % 64) + detail / 64 % 3 - 1;
      break;
    case 2:
      n = LONG_MAX - detail % 4;
      break;
    case 3:  // the square root of 2^63 lies in the middle
      n = 3037000498 + detail % 4;
      break;
    case 4:
      for (unsigned const factor : {4096U, 729U, 625U, 343U, 121U, 13U, 17U, 19U})
        if ((detail >> factor % 8 & 1) != 0) n *= factor;
      break;
    default:
      for (unsigned i = 0; i < detail % 8; ++i) n = n << 8 | next();
  }
  return static_cast<long>(shape % 2 == 0 ? n : 0 - n);
}

/// An integer of one or two words.
template <class Next>
mpz_class corner_integer(Next& next) {
  mpz_class n = corner_word(next);
  unsigned const more = next() % 8;
  if (more >= 6) n *= corner_word(next);
  if (more >= 7) n += corner_word(next);
  return n;
}

/// In lowest terms.
template <class Next>
mpq_class corner_rational(Next& next) {
  mpz_class const n = corner_integer(next);
  mpz_class const d = corner_integer(next);
  mpq_class q(n, d == 0 ? mpz_class(1) : d);
  q.canonicalize();
  return q;
}

/// `value`, in big form if asked for, otherwise in small form if it fits.
inline QNumber to_number(mpq_class const& value, bool big = false) {
  mpz_srcptr const n = value.get_num_mpz_t();
  mpz_srcptr const d = value.get_den_mpz_t();
  return big ? QNumber::big_from_mpz(n, d) : QNumber::from_mpz(n, d);
}

/// The two parts of `q` as they stand: nothing is cancelled on the way.
inline mpq_class to_rational(QNumber const& q) {
  return {mpz_class(q.numerator().get()), mpz_class(q.denominator().get())};
}

}  // namespace zelk::test
