#pragma once

#include "zelk/numbers/q_number.h"
#include "zelk/real/interval.h"

/// How far a checker has to go (zelk/verify/, docs/mathematics.md, section 17) for bounds within
/// 2^-accuracy of the truth. A bit too much costs hardly anything; too little makes a proof that is
/// none.
namespace zelk::certify {

struct Effort {
  long halvings;
  long terms;
  long bits;
};

/// A bound e with |x| < 2^e, and |x| > 2^(e-2) unless x is 0.
long magnitude(QNumber const& x);

/// The greatest magnitude of both ends, at least 0.
long magnitude(real::Interval const& x);

/// The accuracy that tells the true value from the ends of an image with that many digits.
long accuracy_of(real::Interval const& image, unsigned digits);

/// Of e^x, relatively, for |x| < 2^magnitude.
Effort effort_of_exp(long magnitude, long accuracy);

Effort effort_of_turn(long accuracy);
Effort effort_of_atan(long accuracy);

/// No halvings.
Effort effort_of_pi(long accuracy);

/// The bits of x^exponent = y for x and y from those intervals; what is exactly equal is seen to
/// be.
long bits_of_power(real::Interval const& x, QNumber const& exponent, real::Interval const& y,
                   long accuracy);

}  // namespace zelk::certify
