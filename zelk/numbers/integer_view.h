#pragma once

#include <gmp.h>

#include "zelk/config.h"

namespace zelk {

/// A read-only GMP integer that stands for an integer held elsewhere: a machine word, which the
/// view then carries in a limb of its own, or a GMP integer, which it merely points at.
///
/// It converts to `mpz_srcptr`; `get()` and `->` serve GMP's macros, which read the fields. The
/// pointer is good while the view lives. A view that only an expression makes is gone at its end:
///
///     mpz_fdiv_q(floor, q.numerator(), q.denominator());  // right: within one expression
///     auto const n = q.numerator();                       // right: the view itself is kept
///     mpz_srcptr n = q.numerator();                       // wrong: dangles, compilers warn
///
/// Requires: what it was made from outlives it unchanged. Costs no allocation and no GMP call.
class IntegerView {
 public:
  /// Of a machine word, or of a GMP integer, which is not copied.
  explicit IntegerView(long word)
      : limb(word < 0 ? ~static_cast<mp_limb_t>(word) + 1 : static_cast<mp_limb_t>(word)),
        own MPZ_ROINIT_N(&limb, (word > 0) - (word < 0)),
        elsewhere(nullptr) {}
  explicit IntegerView(mpz_srcptr integer) : elsewhere(integer) {}

  IntegerView(IntegerView const&) = delete;
  IntegerView& operator=(IntegerView const&) = delete;
  ~IntegerView() = default;

  /// As GMP's functions take it; `->` reaches the fields, which its macros read.
  mpz_srcptr get() const ZELK_LIFETIMEBOUND { return elsewhere != nullptr ? elsewhere : own; }
  operator mpz_srcptr() const ZELK_LIFETIMEBOUND { return get(); }
  mpz_srcptr operator->() const ZELK_LIFETIMEBOUND { return get(); }

 private:
  mp_limb_t limb;
  mpz_t own;
  mpz_srcptr elsewhere;  // null when the integer is `own`: that way compilers see what dangles
};

}  // namespace zelk
