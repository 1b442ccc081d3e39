#pragma once

#include "zelk/config.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// The best numbers with denominators up to `limit` in q's place, q itself if that is one of them:
/// the greatest that is not above q, the least that is not below it, and the nearest. Of two that
/// are equally near, the one of the smaller denominator, and of two integers the one of the smaller
/// absolute value.
///
/// For 314159265358979/10^14 and the limit 100 they are 311/99, 22/7 and 311/99. They need not be
/// convergents: 311/99 lies between two of them, 3/1 and 333/106.
///
/// Throws: std::domain_error unless limit is an integer from 1 on.
/// Cost: with parts of n bits O(M(n) log n), where M(n) is the time of GMP's multiplication; no
/// gcd. Source: docs/mathematics.md, section 13.
[[nodiscard]] ZELK_EXPORT QNumber best_below(QNumber const& q, QNumber const& limit);
[[nodiscard]] ZELK_EXPORT QNumber best_above(QNumber const& q, QNumber const& limit);
[[nodiscard]] ZELK_EXPORT QNumber best_nearest(QNumber const& q, QNumber const& limit);

}  // namespace zelk::na
