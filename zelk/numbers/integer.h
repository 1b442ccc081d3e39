#pragma once

#include <gmp.h>

#include "zelk/config.h"

namespace zelk {

/// A GMP integer that releases itself: working storage of the computations that look inside
/// fractions. Starts as 0 and serves wherever GMP wants a pointer.
///
/// The pointers that it gives are good while it lives.
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
  mpz_srcptr get() const ZELK_LIFETIMEBOUND { return own; }
  operator mpz_ptr() ZELK_LIFETIMEBOUND { return own; }
  operator mpz_srcptr() const ZELK_LIFETIMEBOUND { return own; }
  mpz_ptr operator->() ZELK_LIFETIMEBOUND { return own; }
  mpz_srcptr operator->() const ZELK_LIFETIMEBOUND { return own; }

 private:
  mpz_t own;
};

}  // namespace zelk
