#pragma once

#include <gmp.h>

namespace zelk::real {

/// e^x over 2^bits, within 2^splitting_error_bits units. Cost: O(M(bits) log^2 bits), where M(n) is
/// the time of GMP's multiplication, and less if x is short.
constexpr unsigned long splitting_error_bits = 10;

/// Of x over 2^bits. Requires: |x| < 2.
void exp_in_bursts(mpz_ptr out, mpz_srcptr x, unsigned long bits);

/// Of x = n/d. Requires: |x| < 2 and d > 0.
void exp_of_ratio(mpz_ptr out, mpz_srcptr n, mpz_srcptr d, unsigned long bits);

}  // namespace zelk::real
