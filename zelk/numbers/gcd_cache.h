#pragma once

#include <cassert>

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

namespace detail {

/// Enters gcd(a, b) in both orders. Requires: 0 <= a <= gcd_cache_limit, 1 <= b <= gcd_cache_limit.
ZELK_EXPORT [[gnu::noinline, gnu::cold]] void remember_gcd(long a, long b);

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
      if (known != 0) return known;
      remember_gcd(a, b);
    }
    long const remainder = a % b;
    if (remainder == 0) return b;
    a = b;
    b = remainder;
  }
}

}  // namespace detail
}  // namespace zelk
