#pragma once

#include <gmp.h>

#include <string>

#include "zelk/numbers/integer.h"

/// Integers as decimal digits, of any length. GMP converts long ones in one go; here they fall into
/// halves until they are short, as within GMP, but what takes long can be stopped in between.
namespace zelk::convert {

/// Appends n. Throws: std::bad_alloc, Stopped; the text may have grown.
void append_digits(std::string& text, mpz_srcptr n);

/// Requires: `digits` holds decimal digits only, at least one.
void assign_digits(Integer& n, std::string const& digits);

}  // namespace zelk::convert
