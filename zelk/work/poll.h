#pragma once

#include <gmp.h>

#include "zelk/config.h"
#include "zelk/work/meter.h"

/// How long computations, those of a host too, let themselves be counted and stopped: they call
/// `poll` before each block of work that takes a microsecond or more, where an exception leaves
/// every object usable.
namespace zelk::work {

/// The last of this thread's meters; null if there are none.
ZELK_EXPORT extern constinit thread_local Meter* innermost;

/// Tells the thread's meters, of which there are some.
ZELK_EXPORT void count(double work, unsigned long steps);

/// Counts so much work, and so many steps of a progress, if somebody does.
/// Throws: Stopped, and what the host's own question throws.
inline void poll(double work, unsigned long steps = 0) {
  if (innermost != nullptr) [[unlikely]]
    count(work, steps);
}

/// Computations on so few limbs are over too soon to be asked in between.
inline constexpr mp_size_t most_unasked_limbs = 16;

/// Of a number, in whole limbs.
inline double bits_of(mpz_srcptr n) { return 64.0 * static_cast<double>(mpz_size(n)); }

// The functions of sizes have no effects, so that what nobody counts is not computed.

/// A product of two numbers with so many bits; as the checkers of certificates count it.
[[gnu::const]] ZELK_EXPORT double product(double bits) noexcept;

/// A pass over a number with so many bits, by a word: as many products of words.
inline double pass(double bits) { return 8 * bits; }

/// A division, a root, a conversion: of GMP's functions the ones that take several products.
inline double division(double bits) { return 4 * product(bits); }

/// A greatest common divisor, and its like.
[[gnu::const]] ZELK_EXPORT double gcd(double bits) noexcept;

/// Before so many products of n limbs.
inline void poll_products(mp_size_t n, double count = 1) {
  if (n > most_unasked_limbs) poll(count * product(static_cast<double>(n) * GMP_NUMB_BITS));
}

}  // namespace zelk::work
