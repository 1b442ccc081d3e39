#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>  // declares std::hash, and is much shorter than <functional>

#include "zelk/config.h"
#include "zelk/numbers/q_number.h"

namespace zelk {
namespace detail {

/// A hash of h and x of which every bit depends on all of theirs: two rounds of multiplication by
/// an odd constant and of folding the upper half into the lower.
inline std::uint64_t mixed(std::uint64_t h, std::uint64_t x) {
  h ^= x;
  for (int round = 0; round < 2; ++round) {
    h *= 0x9e3779b97f4a7c15;  // 2^64 divided by the golden ratio
    h ^= h >> 32;
  }
  return h;
}

inline std::uint64_t hash_words(long n, long d) {
  return mixed(mixed(0, static_cast<std::uint64_t>(n)), static_cast<std::uint64_t>(d));
}

ZELK_EXPORT [[gnu::noinline]] std::uint64_t hash_big(QNumber const& q);

}  // namespace detail

/// A hash of q's value: equal numbers have equal hashes, whatever their forms.
///
/// Cost: a few instructions for a small form, a pass over the limbs of a big one.
inline std::uint64_t value_hash(QNumber const& q) {
  if (q.is_big()) return detail::hash_big(q);
  return detail::hash_words(q.small_numerator(), q.small_denominator());
}

}  // namespace zelk

/// For hosts' own containers: the hash of the value. The caches of the library find their chains by
/// `zelk::Hasher<QNumber>`, which tells the forms of some numbers apart.
template <>
struct std::hash<zelk::QNumber> {
  /// Cost: as `zelk::value_hash`.
  std::size_t operator()(zelk::QNumber const& q) const noexcept { return zelk::value_hash(q); }
};
