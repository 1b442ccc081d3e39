#pragma once

#include "zelk/numbers/integer.h"

namespace zelk::na {

/// The convergents h/k of [a0; a1, ...], term by term: h' = a h + h0 and k' = a k + k0, where h0/k0
/// is the convergent before. They come in lowest terms; k is positive unless terms are negative.
struct ConvergentRecurrence {
  /// Goes on to the convergent after one more term. Costs two products, and no gcd.
  void append(mpz_srcptr term) {
    mpz_addmul(h0, term, h);
    mpz_addmul(k0, term, k);
    mpz_swap(h, h0);
    mpz_swap(k, k0);
  }

  Integer h{1}, h0, k, k0{1};
};

}  // namespace zelk::na
