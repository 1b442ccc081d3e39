#pragma once

#include <gmp.h>

#include <cstdint>

#include "zelk/approx/internal/quotient_matrix.h"
#include "zelk/approx/internal/ratio.h"
#include "zelk/work/poll.h"

/// Intervals around ratios, made of their leading bits: the quotients that all numbers of an
/// interval share are those of the numbers in it. Proofs: docs/mathematics.md, section 13.
namespace zelk::na {

struct WordRatio {
  std::uint64_t n, d;
};

// What is added to the parts where bits were cut off: each part lacks less than 1, so that the
// ratio stays above or below the true one.
inline constexpr WordRatio downwards{0, 1};
inline constexpr WordRatio upwards{1, 0};

/// Before a step of an expansion by words, with parts of so many bits.
inline void poll_step(mp_bitcnt_t bits) {
  if (bits > GMP_NUMB_BITS * work::most_unasked_limbs)
    work::poll(8 * work::pass(static_cast<double>(bits)));
}

/// The greater of the two parts' lengths.
mp_bitcnt_t bits_of(Ratio const& x);

/// The leading 63 bits of the greater part, and the other's at the same places.
WordRatio leading_word(Ratio const& x, WordRatio const& if_cut);

/// The same with `bits` bits; the answer is how many are cut off.
mp_bitcnt_t set_leading(Ratio& cut, Ratio const& x, mp_bitcnt_t bits, WordRatio const& if_cut);

/// `take_off` for an x whose leading part has left `rest` already. Changes `rest` and `scratch`.
void take_off(QuotientMatrix const& matrix, Ratio& x, Ratio& rest, mp_bitcnt_t shift,
              WordRatio const& if_cut, Integer& scratch);

/// The quotients that all numbers of [low, high] share and go on after. `note` is told each.
template <class Note>
WordMatrix common_quotients(WordRatio low, WordRatio high, Note const& note) {
  WordMatrix matrix;
  for (;;) {
    std::uint64_t const quotient = low.n / low.d;
    std::uint64_t const low_rest = low.n - quotient * low.d;
    std::uint64_t const high_rest = high.n - quotient * high.d;
    if (low_rest == 0 || high_rest >= high.d) return matrix;  // so also where high.d is 0
    matrix.append(quotient);
    note(quotient);
    WordRatio const next{high.d, high_rest};
    high = {low.d, low_rest};
    low = next;
  }
}

}  // namespace zelk::na
