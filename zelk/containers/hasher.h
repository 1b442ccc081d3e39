#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "zelk/numbers/q_number.h"

namespace zelk {

template <class Key>
struct Hasher;

/// The hash of a number. Small forms, and big forms whose two parts fit in 32 bits, hash by value;
/// any other big form by its limbs. A number between those sizes therefore hashes differently in
/// its two forms, though they compare equal, and a table can come to hold both.
template <>
struct Hasher<QNumber> {
  std::uint64_t operator()(QNumber const& q) const {
    if (!q.is_big()) return of_words(q.small_numerator(), q.small_denominator());
    IntegerView const n = q.numerator();
    IntegerView const d = q.denominator();
    if (mpz_fits_sint_p(n) != 0 && mpz_fits_sint_p(d) != 0)
      return of_words(mpz_get_si(n), mpz_get_si(d));
    return mix_limbs(mix_limbs(0, n), d);
  }

 private:
  static std::uint64_t of_words(long n, long d) {
    return std::rotl(static_cast<std::uint64_t>(n), 32) + 2 * static_cast<std::uint64_t>(d);
  }

  static std::uint64_t mix_limbs(std::uint64_t h, mpz_srcptr magnitude) {
    std::size_t const limbs = mpz_size(magnitude);
    for (std::size_t i = 0; i < limbs; ++i)
      h ^= (h << 6) + (h >> 2) + mpz_getlimbn(magnitude, static_cast<mp_size_t>(i));
    return h;
  }
};

namespace hsh {

template <class Key>
struct hash;

template <>
struct hash<unsigned> {
  std::uint64_t operator()(unsigned key) const { return key; }
};

/// Hash and equality of a (number, precision) key: with one key it hashes, with two it compares.
/// Numbers are equal by value, whatever their forms. A `View` of the two parts serves as a key.
struct pair_hash_eq {
  using View = std::pair<QNumber const&, unsigned>;

  std::uint64_t operator()(View key) const {
    return Hasher<QNumber>()(key.first) << 32 | key.second;
  }
  bool operator()(View a, View b) const { return a.second == b.second && a.first == b.first; }
};

}  // namespace hsh
}  // namespace zelk
