#pragma once

#include <optional>
#include <string>
#include <vector>

#include "zelk/real/elementary_functions.h"
#include "zelk/real/expression.h"
#include "zelk/real/interval.h"
#include "zelk/verify/certificate.h"

namespace zelk::certify {

/// A claim that has been made.
struct Part {
  std::size_t claim;
  std::string text;  // what it is about
  real::Interval bounds;
};

/// Writes claims one after the other, each with as much effort as its ends call for.
///
/// Requires: images are those of `functions` at so many digits, or hold them.
class Maker {
 public:
  explicit Maker(real::ElementaryFunctions& real_functions) : functions(real_functions) {}

  Part number(real::Interval const& x);
  Part pi(real::Interval const& bounds, unsigned digits);

  /// An operation on the one or two operands that it takes.
  Part combined(real::Kind kind, std::vector<Part> operands, real::Interval const& image,
                unsigned digits);

  /// What is not known by its digits.
  Part claim(std::string theorem, std::vector<QNumber> arguments, std::vector<Part> const& premises,
             std::string text, real::Interval const& bounds);

  /// That of which the last claim is about `answer`.
  verify::Certificate finish(Part const& answer);

 private:
  Part call(std::string name, std::string theorem, std::vector<QNumber> arguments,
            std::vector<Part> const& premises, real::Interval const& image);
  Part turned(std::string const& name, Part const& x, real::Interval const& image, long accuracy);
  Part power(Part const& x, Part const& exponent, real::Interval const& image, unsigned digits);
  Part const& pi_of(long accuracy);

  real::ElementaryFunctions& functions;
  verify::Certificate certificate;
  std::optional<Part> known_pi;
  long pi_accuracy = 0;
};

}  // namespace zelk::certify
