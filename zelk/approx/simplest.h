#pragma once

#include <utility>
#include <vector>

#include "zelk/config.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// Which of its ends an interval holds: closed both, open none, left_open the upper alone,
/// right_open the lower alone.
enum class Ends { closed, left_open, right_open, open };

/// The simplest number between two: of all that the interval holds, the one of least denominator,
/// and of several integers the one of least absolute value. Between 5/14 and 2/5 it is 2/5, and 3/8
/// if the interval is open; between -7/2 and -5/2 it is -3, and between -1 and 1 it is 0.
///
/// Throws: std::domain_error if the interval is empty: lower > upper, or lower = upper and not
/// closed.
/// Cost: with parts of n bits O(M(n) log n), where M(n) is the time of GMP's multiplication; no
/// gcd. Source: docs/mathematics.md, section 13.
[[nodiscard]] ZELK_EXPORT QNumber simplest_between(QNumber const& lower, QNumber const& upper,
                                                   Ends ends = Ends::closed);

/// The interval (lower, upper) with shorter ends: each is moved outward, by its slack at most, to
/// the simplest number there, the lower one to the simplest in [lower - slack, lower], the upper
/// one to the simplest in [upper, upper + slack]. Each is the simplest for its own slack; for a
/// width in all no pair is the shortest, since every share of the room makes another pair.
///
/// An end passes 0 never, and becomes 0 if its slack reaches so far.
///
/// Throws: std::domain_error if lower > upper or a slack is negative.
/// Cost: as `simplest_between`, once for what both ends have in common.
[[nodiscard]] ZELK_EXPORT std::pair<QNumber, QNumber> shortened(
    std::pair<QNumber, QNumber> const& bounds, QNumber const& slack);
[[nodiscard]] ZELK_EXPORT std::pair<QNumber, QNumber> shortened(
    std::pair<QNumber, QNumber> const& bounds, QNumber const& lower_slack,
    QNumber const& upper_slack);

/// The partial quotients that the expansions of all numbers in [lower, upper] begin with: what an
/// enclosure proves about the expansion of a number. Expansions are canonical, whatever the form:
/// floors, the first alone not positive, the last of several at least 2; that of -7/2 is [-4; 2]
/// and that of 0 is [0]. All numbers in [3141/1000, 3142/1000] begin with 3; 7, and those in [2,
/// 5/2] with 2 alone, where the first of them ends.
///
/// Throws: std::domain_error if lower > upper.
/// Cost: as `simplest_between`, and the quotients.
[[nodiscard]] ZELK_EXPORT std::vector<QNumber> common_terms(QNumber const& lower,
                                                            QNumber const& upper);

}  // namespace zelk::na
