#pragma once

#include <array>
#include <cassert>
#include <concepts>
#include <tuple>

#include "zelk/config.h"

namespace zelk {

/// The largest integer that has a row and a column in `gcd_cache`.
inline constexpr long gcd_cache_limit = 1023;

/// Process-wide memo of small gcds: `gcd_cache[a][b]` is gcd(a, b), or 0 while nobody has asked.
/// All zero before any code runs, symmetric, only ever filled.
///
/// All threads fill it, by relaxed atomic accesses: whoever writes a cell writes the same gcd. A
/// host may read it and add entries, while other threads compute likewise by `std::atomic_ref`.
ZELK_EXPORT extern long gcd_cache[gcd_cache_limit + 1][gcd_cache_limit + 1];

/// Enters all gcds, except that of 0 and 0, which is none. Once they are there, comparing small
/// numbers takes two products and no gcd: for hosts that are going to compare many millions.
/// No answer depends on it. Cost: some milliseconds, once, and the 8 MiB of the table.
ZELK_EXPORT void fill_gcd_cache();

namespace detail {

/// As `cached_gcd`. Requires: 0 <= a <= gcd_cache_limit, 1 <= b <= gcd_cache_limit, and the table
/// does not know the pair.
ZELK_EXPORT [[gnu::noinline, gnu::cold]] long enter_gcd(long a, long b);

/// gcd(a, b) by Euclid's algorithm, which ends early at the first pair the table already knows and
/// enters every pair inside the table that it passes, so that a later walk over the same remainders
/// is one look.
///
/// Requires: a >= 0, b >= 1. Cost: one look for a known pair, otherwise a division for each step of
/// Euclid's algorithm until one is met, at most 91.
inline long cached_gcd(long a, long b) {
  assert(a >= 0 && b >= 1);
  for (;;) {
    // The limit is 2^10 - 1, so one comparison tests both.
    if ((a | b) <= gcd_cache_limit) {
      long const known = __atomic_load_n(&gcd_cache[a][b], __ATOMIC_RELAXED);
      return known != 0 ? known : enter_gcd(a, b);
    }
    long const remainder = a % b;
    if (remainder == 0) return b;
    a = b;
    b = remainder;
  }
}

/// Two words whose gcd is wanted, as `cached_gcd` takes them.
struct ZELK_EXPORT WordPair {
  bool is_in_table() const { return (a | b) <= gcd_cache_limit; }
  long known() const { return __atomic_load_n(&gcd_cache[a][b], __ATOMIC_RELAXED); }

  long a, b;
};

/// What `cached_gcd` of one pair after the other returns and enters, by descents that take their
/// steps together, so that no division waits for that of another. For two or three pairs.
template <std::same_as<WordPair>... Pairs>
ZELK_EXPORT std::array<long, sizeof...(Pairs)> descend_together(Pairs... pairs);

/// The same, when the table may well know all.
template <std::same_as<WordPair>... Pairs>
[[gnu::always_inline]] inline std::array<long, sizeof...(Pairs)> cached_gcds(Pairs... pairs) {
  if ((pairs.is_in_table() && ...)) {
    std::array<long, sizeof...(Pairs)> const known = {pairs.known()...};
    if (std::apply([](auto... gcds) { return ((gcds != 0) && ...); }, known)) return known;
  }
  return descend_together(pairs...);
}

/// Whether every pair 1 <= a < b has been seen in the table.
ZELK_EXPORT extern bool has_all_gcds;

/// The same, and that the table has not been cleared since, as its first pair shows.
inline bool is_table_complete() {
  return __atomic_load_n(&has_all_gcds, __ATOMIC_RELAXED) &&
         __atomic_load_n(&gcd_cache[2][1], __ATOMIC_RELAXED) != 0;
}

/// Enters what `cached_gcds` would. A descent from beyond the table passes pairs a > b >= 1 there.
inline void enter_gcds(WordPair x, WordPair y) {
  if (x.is_in_table() && y.is_in_table()) {
    if (x.known() != 0 && y.known() != 0) return;
  } else if (!x.is_in_table() && !y.is_in_table() && is_table_complete()) {
    return;
  }
  descend_together(x, y);
}

}  // namespace detail
}  // namespace zelk
