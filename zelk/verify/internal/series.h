#pragma once

#include <deque>
#include <optional>

#include "zelk/numbers/q_number.h"
#include "zelk/verify/internal/budget.h"
#include "zelk/verify/internal/whole.h"

namespace zelk::verify {

constexpr long most_bits = 1L << 24;

/// Whose sign tells where a function is above a bound: i s + j c + k, where s and c are the sine
/// and the cosine at a point, or the hyperbolic ones.
struct Form {
  Whole i;
  Whole j;
  Whole k;
};

/// All that is known of a function: a new one is one more of these.
struct Function {
  bool is_circular;           // otherwise it grows, for x >= 0 at least
  std::optional<long> least;  // bounds everywhere
  std::optional<long> greatest;

  /// The form of f(x) - p/q.
  Form (*form)(QNumber const& x, Whole const& p, Whole const& q);
};

extern Function const exp_function, sinh_function, cosh_function, tanh_function;
extern Function const sin_function, cos_function;
extern Function const tan_function;  // where the cosine is negative, the sign is the opposite

/// Functions at rational points to a number of bits, from their series, in integers whose errors
/// are counted: docs/mathematics.md, section 17.
class Series {
 public:
  Series(long bits_behind, Budget& work) : bits(bits_behind), budget(work) {}

  /// Whether surely f(x) >= bound, for sign 1, or f(x) <= bound, for -1. Throws: Rejected.
  /// Requires: x >= 0 for cosh.
  bool surely(Function const& f, QNumber const& x, int sign, QNumber const& bound);

 private:
  /// Sine and cosine in units of 2^-b, within `error` of them.
  struct Point {
    QNumber x;
    bool is_circular;
    Whole s;
    Whole c;
    long b;
    Whole error;
  };
  Point const& at(QNumber const& x, bool is_circular);

  long bits;
  Budget& budget;
  std::deque<Point> known;
};

}  // namespace zelk::verify
