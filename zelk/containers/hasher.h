#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>  // with the library of GCC it has std::equal_to, in half the time of <functional>
#ifndef __GLIBCXX__
#include <functional>
#endif

#include "zelk/numbers/hash.h"
#include "zelk/numbers/q_number.h"

namespace zelk {

/// The hash of a key, as a function object.
template <class Key>
struct Hasher;

/// The hash of a number. Small forms, and big forms whose two parts fit in 32 bits, hash by value;
/// any other big form by its limbs. A number between those sizes therefore hashes differently in
/// its two forms, though they compare equal, and a table can come to hold both.
template <>
struct Hasher<QNumber> {
  /// Cost: a few instructions for a small form, a pass over the limbs of a big one.
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
    mp_limb_t const* const limbs = mpz_limbs_read(magnitude);
    for (std::size_t i = 0; i < mpz_size(magnitude); ++i) h ^= (h << 6) + (h >> 2) + limbs[i];
    return h;
  }
};

namespace hsh {

/// The hash of a key that is no number.
template <class Key>
struct hash;

/// The hash of a precision: the precision.
template <>
struct hash<unsigned> {
  /// Returns the key.
  std::uint64_t operator()(unsigned key) const { return key; }
};

/// Hash and equality of a (number, precision) key: with one key it hashes, with two it compares.
/// Numbers are equal by value, whatever their forms.
struct pair_hash_eq {
  /// A number and a precision.
  using Key = std::pair<QNumber, unsigned>;

  /// Stands in for a key in lookups, without a copy of the number. Hashes the number once, when it
  /// is made, for any number of lookups.
  struct View : std::pair<QNumber const&, unsigned> {
    /// Requires: the number outlives the view, unchanged.
    View(QNumber const& number, unsigned precision)
        : pair(number, precision), number_hash(Hasher<QNumber>()(number)) {}

    /// `Hasher<QNumber>` of the number.
    std::uint64_t number_hash;
  };

  /// The hash of a key, or whether two are equal. The hash is the lower half of the number's above
  /// the precision: at one precision, small numbers with one denominator and numerators from 0 to
  /// 2^32 - 1 have one hash, and meet in one chain.
  std::uint64_t operator()(Key const& key) const { return (*this)(View(key.first, key.second)); }
  bool operator()(Key const& a, Key const& b) const { return are_equal(a, b); }

  /// The same of views. Templates, so that {number, precision} means a key.
  template <std::same_as<View> V>
  std::uint64_t operator()(V const& key) const {
    return key.number_hash << 32 | key.second;
  }
  template <std::same_as<View> V>
  bool operator()(Key const& a, V const& b) const {
    return are_equal(a, b);
  }

  /// A finer hash, for where many keys have one hash: of the number's value and the precision.
  template <class AnyKey>
  requires(std::same_as<AnyKey, Key> || std::same_as<AnyKey, View>) static std::uint64_t
      fine(AnyKey const& key) {
    return detail::mixed(value_hash(key.first), key.second);
  }
  /// The equality that it goes with: what is derived from this may have another.
  using FineFor = pair_hash_eq;

 private:
  static bool are_equal(auto const& a, auto const& b) {
    return a.second == b.second && a.first == b.first;
  }
};

}  // namespace hsh
}  // namespace zelk
