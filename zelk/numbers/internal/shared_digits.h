#pragma once

#include "zelk/numbers/q_number.h"

namespace zelk::detail {

/// Makes a number in big form that reads another one's digits where they stand, and has none of its
/// own: GMP does not release an integer's limbs if none are allocated (since 6.2). Copies of it
/// have digits of their own, as of any number.
///
/// Requires: the other number is in big form and keeps its digits for as long as the new one is
/// read; the new one is never changed. Either may be destroyed first.
struct SharedDigits {
  QNumber const& number;
};

}  // namespace zelk::detail
