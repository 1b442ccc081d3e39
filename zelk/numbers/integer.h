#pragma once

#include <gmp.h>

namespace zelk {

/// A GMP integer that releases itself: working storage of the computations that look inside
/// fractions. Starts as 0 and serves wherever GMP wants a pointer.
class Integer {
 public:
  /// The integer 0, or a copy of n.
  Integer() { mpz_init(own); }
  explicit Integer(unsigned long n) { mpz_init_set_ui(own, n); }
  explicit Integer(mpz_srcptr n) { mpz_init_set(own, n); }
  Integer(Integer const&) = delete;
  Integer& operator=(Integer const&) = delete;
  ~Integer() { mpz_clear(own); }

  /// As GMP's functions take it; `->` reaches the fields, which its macros read.
  mpz_srcptr get() const { return own; }
  operator mpz_ptr() { return own; }
  operator mpz_srcptr() const { return own; }
  mpz_ptr operator->() { return own; }
  mpz_srcptr operator->() const { return own; }

 private:
  mpz_t own;
};

}  // namespace zelk
