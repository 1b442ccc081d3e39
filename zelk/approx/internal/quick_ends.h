#pragma once

#include <optional>
#include <utility>

#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// What `shortened` answers, found on fixed places hardly finer than the slacks: the simplest
/// number of a slightly wider interval is that of the interval itself if it lies there, which is
/// tested. Nothing if it does not, or if an end has no room, or an integer within it.
///
/// Nothing also if lower > upper. Requires: the slacks are not negative.
std::optional<std::pair<QNumber, QNumber>> quickly_shortened(QNumber const& lower,
                                                             QNumber const& upper,
                                                             QNumber const& lower_slack,
                                                             QNumber const& upper_slack);

}  // namespace zelk::na
