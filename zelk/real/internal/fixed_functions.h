#pragma once

#include <gmp.h>

/// The functions on a part of the line, of integers over 2^(64 n) with n >= 1. Results are within
/// 2^(chord_error_bits(n) + function_error_bits) units. The same integer may stand for the argument
/// and the result.
namespace zelk::real {

constexpr unsigned long function_error_bits = 4;

/// The least n with an error below 2^-bits.
mp_size_t limbs_for(unsigned long bits);

/// e^x. Requires: 1/5 <= x < 2.
void exp_fixed(mpz_ptr out, mpz_srcptr x, mp_size_t n);

/// log x. Requires: 4/3 <= x < 8/3.
void log_fixed(mpz_ptr out, mpz_srcptr x, mp_size_t n);

/// atan x. Requires: 0 <= x <= 1. The error is 2^lost times as great for an x between 2^-lost and
/// 1, where lost <= 64 n/20; below that the series is summed, and nothing is lost.
void atan_fixed(mpz_ptr out, mpz_srcptr x, mp_size_t n);

}  // namespace zelk::real
