#pragma once

#include <optional>

#include "zelk/numbers/q_number.h"
#include "zelk/real/interval.h"

/// The elementary functions at a rational point: intervals that hold the value and are at most
/// 2^-bits wide, where bits may be negative. Their ends are integers over a power of two, or the
/// value itself where it is known to be rational. Inside, each step is rounded outward, with a
/// stated bound (docs/mathematics.md, section 15).
///
/// Arguments may have any size; the cost depends on `bits` and on the size of the value.
namespace zelk::real {

class Constants;

/// Requires: x < 2^61.
Interval exp_at(QNumber const& x, long bits, Constants& constants);

/// Requires: x > 0.
Interval log_at(QNumber const& x, long bits, Constants& constants);

Interval sin_at(QNumber const& x, long bits, Constants& constants);
Interval cos_at(QNumber const& x, long bits, Constants& constants);
Interval atan_at(QNumber const& x, long bits, Constants& constants);
Interval pi_at(long bits, Constants& constants);

/// The root of that degree; exact where it is rational. Requires: x >= 0 and degree >= 1.
Interval root_at(QNumber const& x, unsigned long degree, long bits, Constants& constants);

/// The root, where it is rational. Requires: x > 0.
std::optional<QNumber> rational_root(QNumber const& x, QNumber const& degree);

/// floor(x / (pi/2)), certain: the sum of k pi/2 and a number in [0, pi/2) is x.
QNumber quadrant_of(QNumber const& x, Constants& constants);

}  // namespace zelk::real
