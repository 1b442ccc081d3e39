#pragma once

#include <gmp.h>

#include <array>

#include "zelk/numbers/integer.h"

namespace zelk::real {

/// pi and the logarithms of the primes up to 7, kept at the best precision met.
class Constants {
 public:
  /// below/2^bits <= pi <= (below + units)/2^bits, and the logarithms likewise.
  void pi(mpz_ptr below, unsigned long bits);
  void log2(mpz_ptr below, unsigned long bits) { log_of_prime(below, 0, bits); }

  /// Of primes[index].
  void log_of_prime(mpz_ptr below, std::size_t index, unsigned long bits);

  static constexpr unsigned long units = 2;
  static constexpr std::array<unsigned long, 4> primes{2, 3, 5, 7};

 private:
  void compute_pi(unsigned long bits);
  void compute_logs(unsigned long bits);

  // Below the constants by `units` at most.
  Integer kept_pi;
  unsigned long pi_bits = 0;
  std::array<Integer, 4> kept_logs;
  unsigned long log_bits = 0;
};

}  // namespace zelk::real
