#pragma once

#include <memory>

#include "zelk/config.h"
#include "zelk/numbers/q_number.h"
#include "zelk/real/accuracy.h"
#include "zelk/real/interval.h"

namespace zelk::real {

class Constants;

/// Between an end of an answer and the true value lie more than 10^-digits / 2^(this + 8), or that
/// times the value, unless the end is 0, the value itself, or what no value of the function passes:
/// 1 and -1 for sin, cos and tanh, 1 for cosh. Proofs of answers rest on it.
inline constexpr long answer_margin_bits = 32;

/// The elementary functions over intervals.
///
/// An answer holds every value that the function takes on x. Its ends are within the accuracy asked
/// for of the least and the greatest such value, and rational numbers that are short for that; of a
/// point the interval is at most 10^-digits wide, or 10^-digits times the value. A value known to
/// be rational is given exactly: sqrt(4) is [2, 2] and exp(0) is [1, 1]. No end of sin, cos and
/// tanh lies beyond 1 and -1, and none of cosh below 1.
///
/// A function that is not defined on all of x throws `Undefined`, and where that is a division by 0
/// `DivisionByZero`: nothing is clipped. `TooLong` is thrown, before the work, when an
/// answer would take more than about `max_bits` bits of memory, as exp(10^9) would: 32 times its
/// length, and for sines, cosines, arcs and their like more.
///
/// pi and log 2 are kept at the best precision that a call needed, so an object is for one thread
/// at a time; distinct objects may be used by distinct threads.
///
/// Cost: with arguments of usual size and n digits, where M(n) is the time of GMP's multiplication,
/// O(M(n)) for roots of low degree, O(M(n) log^2 n) for exponentials and logarithms, and
/// O(n^(1/3) M(n)), with memory for as many numbers, for sines, cosines and arctangents: a few
/// hundred multiplications at a hundred thousand digits. Exponentials take x modulo log 2 and sines
/// x modulo pi/2 first, so that large arguments cost no more than their digits. Source:
/// docs/mathematics.md, section 15.
class ZELK_EXPORT ElementaryFunctions {
 public:
  static constexpr double default_max_bits = 4e9;  // half a gigabyte

  /// What is more counts as this: products on the way have to be shorter than 2^37 bits, beyond
  /// which GMP ends the program.
  static constexpr double greatest_max_bits = 0x1p34;

  explicit ElementaryFunctions(double max_bits = default_max_bits);
  ElementaryFunctions(ElementaryFunctions const&) = delete;
  ElementaryFunctions& operator=(ElementaryFunctions const&) = delete;
  ~ElementaryFunctions();

  Interval exp(Interval const& x, Accuracy accuracy);

  /// The natural logarithm. Throws: Undefined unless x > 0.
  Interval log(Interval const& x, Accuracy accuracy);

  /// Throws: Undefined if x holds negative numbers and the degree is even, or if it is 0.
  /// Roots of odd degree are taken of negative numbers too.
  Interval root(Interval const& x, unsigned long degree, Accuracy accuracy);
  Interval sqrt(Interval const& x, Accuracy accuracy) { return root(x, 2, accuracy); }

  /// x^y. Where y is a point: for integers and every x, but 0 to a negative power; for fractions
  /// and x >= 0, or x > 0 if y is negative. Otherwise e^(y log x), for x > 0. Elsewhere it throws
  /// Undefined, or DivisionByZero for a negative power of 0. A rational value is exact unless it is
  /// many times longer than the accuracy calls for.
  Interval pow(Interval const& x, Interval const& y, Accuracy accuracy);

  Interval sin(Interval const& x, Accuracy accuracy);
  Interval cos(Interval const& x, Accuracy accuracy);

  /// Throws: Undefined if a pole lies in x.
  Interval tan(Interval const& x, Accuracy accuracy);

  /// Throws: Undefined unless -1 <= x <= 1.
  Interval asin(Interval const& x, Accuracy accuracy);
  Interval acos(Interval const& x, Accuracy accuracy);

  Interval atan(Interval const& x, Accuracy accuracy);
  Interval sinh(Interval const& x, Accuracy accuracy);
  Interval cosh(Interval const& x, Accuracy accuracy);
  Interval tanh(Interval const& x, Accuracy accuracy);

  Interval pi(Accuracy accuracy);

  double max_bits() const { return most_bits; }

 private:
  Interval power(Interval const& x, QNumber const& exponent, Accuracy accuracy);

  double most_bits;
  std::unique_ptr<Constants> constants;
};

}  // namespace zelk::real
