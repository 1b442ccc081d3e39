#pragma once

#include <gmpxx.h>

#include <cstddef>
#include <vector>

/// Operands, none of them zero, of either sign, in lowest terms; always the same ones.
namespace zelk::bench {

class RandomRationals {
 public:
  /// Pairs with parts from 1 to `limit`.
  std::vector<mpq_class> up_to(mpz_class const& limit, std::size_t pairs) {
    return made(pairs, [&] { return mpq_class(part(limit), part(limit)); });
  }

  /// The same of integers.
  std::vector<mpq_class> integers_up_to(mpz_class const& limit, std::size_t pairs) {
    return made(pairs, [&] { return mpq_class(part(limit)); });
  }

  /// Pairs with parts of just so many bits.
  std::vector<mpq_class> of_bits(unsigned bits, std::size_t pairs) {
    mpz_class const half = mpz_class(1) << (bits - 1);
    return made(pairs, [&] {
      mpq_class q;
      do {
        q.get_num() = half + random.get_z_bits(bits - 1);
        q.get_den() = half + random.get_z_bits(bits - 1);
      } while (gcd(q.get_num(), q.get_den()) != 1);
      return q;
    });
  }

 private:
  mpz_class part(mpz_class const& limit) { return random.get_z_range(limit) + 1; }

  template <class Make>
  std::vector<mpq_class> made(std::size_t pairs, Make const& make) {
    std::vector<mpq_class> operands(2 * pairs);
    for (mpq_class& q : operands) {
      q = make();
      q.canonicalize();
      if (random.get_z_bits(1) != 0) q = -q;
    }
    return operands;
  }

  gmp_randclass random{gmp_randinit_mt};
};

}  // namespace zelk::bench
