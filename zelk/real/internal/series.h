#pragma once

#include <gmp.h>

/// The functions on a small range, of integers over 2^bits: |out - f(x)| <= 2 units where nothing
/// else is said. The same integer may stand for argument and result.
namespace zelk::real {

/// e^x. Requires: 0 <= x <= 1.
void exp_series(mpz_ptr out, mpz_srcptr x, unsigned long bits);

/// 2(1 - cos x). Requires: |x| <= 2.
void versine_series(mpz_ptr out, mpz_srcptr x, unsigned long bits);

/// atanh x - x or, of negative sign, x - atan x. Requires: |x| <= 1/2.
void atanh_series(mpz_ptr out, mpz_srcptr x, int sign, unsigned long bits);

/// log x. Requires: 1/2 <= x <= 2.
void log_series(mpz_ptr out, mpz_srcptr x, unsigned long bits);

/// atan x. Requires: 0 <= x <= 1.
void atan_series(mpz_ptr out, mpz_srcptr x, unsigned long bits);

}  // namespace zelk::real
