#pragma once

#include "zelk/verify/internal/whole.h"

/// Functions at a rational point, from their definitions, in integers over powers of two. Each
/// rounding has a bound, and the bounds are proved in docs/mathematics.md, section 17.
///
/// All throw `Rejected` where the point is not of those that they are for.
namespace zelk::verify {

/// A real number from low/2^e to high/2^e.
struct Value {
  Whole low;
  Whole high;
  long e;
};

/// How a series is summed: the argument halved so often, so many terms, over 2^bits.
struct Effort {
  long halvings;
  long terms;
  long bits;
};

constexpr long most_bits = 1L << 24;
constexpr long most_exponent = 1L << 31;

/// a/2^e <= b/2^f.
bool is_ordered(Whole const& a, long e, Whole const& b, long f);

/// Whether it is certain that x^i <= y^j. Requires: x, y >= 0; negative powers only of what is not
/// 0.
bool powers_are_ordered(QNumber const& x, long i, QNumber const& y, long j, long bits);

Value pi_machin(long terms, long bits);
Value exp_at(QNumber const& x, Effort const& effort);

/// Bounds of a sine and a cosine.
struct Turned {
  Value sine;
  Value cosine;
};

Value opposite(Value const& x);

/// From x - turns * pi/2, which lies from 0 to pi/2, for pi between those bounds.
Turned turned(QNumber const& x, QNumber const& turns, QNumber const& pi_below,
              QNumber const& pi_above, Effort const& effort);
Value tan_of(Turned const& x);

// Requires: x >= 0, but for acos.
Value atan_at(QNumber const& x, Effort const& effort);
Value asin_at(QNumber const& x, Effort const& effort);
Value acos_at(QNumber const& x, Effort const& effort);
Value sinh_at(QNumber const& x, Effort const& effort);
Value cosh_at(QNumber const& x, Effort const& effort);
Value tanh_at(QNumber const& x, Effort const& effort);

}  // namespace zelk::verify
