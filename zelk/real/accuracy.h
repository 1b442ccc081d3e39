#pragma once

namespace zelk::real {

/// How near the ends of an answer are to the least and the greatest true value.
class Accuracy {
 public:
  /// Within 10^-digits.
  static Accuracy absolute(unsigned digits) { return {digits, false}; }
  Accuracy(unsigned digits) : Accuracy(digits, false) {}

  /// Within 10^-digits times the true value: so many significant digits.
  static Accuracy relative(unsigned digits) { return {digits, true}; }

  unsigned digits() const { return count; }
  bool is_relative() const { return to_value; }

 private:
  Accuracy(unsigned digits, bool is_relative) : count(digits), to_value(is_relative) {}

  unsigned count;
  bool to_value;
};

}  // namespace zelk::real
