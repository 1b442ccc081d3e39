#pragma once

#include <gmp.h>

namespace zelk::na {

/// pi lies between below/2^bits and (below + chudnovsky_units)/2^bits, more than half a unit from
/// both.
///
/// Cost: O(M(bits) log^2 bits), where M(n) is the time of GMP's multiplication; memory linear.
/// Source: docs/mathematics.md, section 14.
void sum_chudnovsky(mpz_ptr below, unsigned long bits);
constexpr unsigned long chudnovsky_units = 5;

}  // namespace zelk::na
