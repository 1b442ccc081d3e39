#pragma once

#include "zelk/numbers/q_number.h"
#include "zelk/real/interval.h"

/// How many bits a checker has to know (zelk/verify/, docs/mathematics.md, section 17) for bounds
/// within 2^-accuracy of the truth. A bit too much costs hardly anything; too few make a proof that
/// is none.
namespace zelk::certify {

/// More than what the errors of a check and roundings of the magnitudes here take.
constexpr long spare_bits = 32;

/// A bound e with |x| < 2^e, and |x| > 2^(e-2) unless x is 0.
long magnitude(QNumber const& x);

/// The greatest magnitude of both ends, at least 0.
long magnitude(real::Interval const& x);

/// The accuracy that tells the true value from the ends of an image with that many digits.
long accuracy_of(real::Interval const& image, unsigned digits);

/// By how many bits less sines and cosines differ than angles that differ by 2^-accuracy, where
/// they are from x.
long flatness(real::Interval const& x, long accuracy);

/// An s with |x|^n/n! > 2^-s.
long smallness_of_term(QNumber const& x, long n);

/// Whether powers of the ends prove in reasonable time that x^exponent lies in the image.
bool is_short_power(real::Interval const& x, QNumber const& exponent, real::Interval const& image);

}  // namespace zelk::certify
