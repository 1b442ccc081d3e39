#pragma once

#include <gmp.h>

#include "zelk/numbers/integer.h"

namespace zelk::real {

/// pi and log 2, kept at the best precision met.
class Constants {
 public:
  /// below/2^bits <= pi <= (below + units)/2^bits, and log 2 likewise.
  void pi(mpz_ptr below, unsigned long bits) { truncate(pi_kept, below, bits); }
  void log2(mpz_ptr below, unsigned long bits) { truncate(log2_kept, below, bits); }
  static constexpr unsigned long units = 2;

 private:
  struct Kept {
    void (*compute)(mpz_ptr below, unsigned long bits);  // a unit below the constant at most
    Integer below;
    unsigned long bits = 0;
  };

  static void compute_pi(mpz_ptr below, unsigned long bits);
  static void compute_log2(mpz_ptr below, unsigned long bits);
  static void truncate(Kept& kept, mpz_ptr below, unsigned long bits);

  Kept pi_kept{compute_pi, {}, 0};
  Kept log2_kept{compute_log2, {}, 0};
};

}  // namespace zelk::real
