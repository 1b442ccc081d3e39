#pragma once

#include <string>
#include <vector>

#include "zelk/real/elementary_functions.h"
#include "zelk/real/expression.h"
#include "zelk/real/interval.h"
#include "zelk/verify/certificate.h"

namespace zelk::certify {

/// A claim that has been made.
struct Part {
  std::size_t number;  // counted from 1
  real::Interval bounds;
};

/// Writes claims one after the other, each with as many bits as its ends call for.
///
/// Requires: images are those of `functions` at so many digits, or hold them.
class Maker {
 public:
  explicit Maker(real::ElementaryFunctions& real_functions) : functions(real_functions) {}

  Part number(real::Interval const& x);

  /// An operation on the one or two operands that it takes.
  Part combined(real::Kind kind, std::vector<Part> operands, real::Interval const& image,
                unsigned digits);

  /// What is not known by its digits.
  Part claim(std::string theorem, std::vector<long> const& arguments,
             std::vector<Part> const& premises, real::Interval const& bounds);

  /// That whose last claim is about an expression. Throws: Unprovable.
  verify::Certificate finish(real::Expression const& expression);

 private:
  Part power(real::Kind kind, Part const& x, Part const& y, real::Interval const& image,
             unsigned digits);

  real::ElementaryFunctions& functions;
  verify::Certificate certificate;
};

}  // namespace zelk::certify
