#pragma once

#include <gmp.h>

namespace zelk {

/// A read-only GMP integer that stands for an integer held elsewhere: a machine word, which the
/// view then carries in a limb of its own, or a GMP integer, which it merely points at.
///
/// It converts to `mpz_srcptr`; `get()` and `->` serve GMP's macros, which read the fields.
/// Requires: what it was made from outlives it unchanged. Costs no allocation and no GMP call.
class IntegerView {
 public:
  /// Of a machine word, or of a GMP integer, which is not copied.
  explicit IntegerView(long word)
      : limb(word < 0 ? ~static_cast<mp_limb_t>(word) + 1 : static_cast<mp_limb_t>(word)),
        own MPZ_ROINIT_N(&limb, (word > 0) - (word < 0)),
        shown(own) {}
  explicit IntegerView(mpz_srcptr integer) : shown(integer) {}

  IntegerView(IntegerView const&) = delete;
  IntegerView& operator=(IntegerView const&) = delete;
  ~IntegerView() = default;

  /// As GMP's functions take it; `->` reaches the fields, which its macros read.
  mpz_srcptr get() const { return shown; }
  operator mpz_srcptr() const { return shown; }
  mpz_srcptr operator->() const { return shown; }

 private:
  mp_limb_t limb;
  mpz_t own;
  mpz_srcptr shown;
};

}  // namespace zelk
