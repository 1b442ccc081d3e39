#pragma once

#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// 10^-prec, in small form up to 10^-18.
QNumber tolerance_of(unsigned prec);

}  // namespace zelk::na
