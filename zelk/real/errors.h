#pragma once

#include <stdexcept>

#include "zelk/config.h"
#include "zelk/numbers/errors.h"

namespace zelk::real {

/// A function is not defined on all of its operands, as log(-1). Divisions by 0 are a
/// `DivisionByZero`.
class ZELK_EXPORT Undefined : public std::domain_error {
 public:
  using std::domain_error::domain_error;
};

/// So many digits do not tell whether an operation is defined, as in log(sin(1)^2 + cos(1)^2 - 1).
class ZELK_EXPORT NotDecided : public std::domain_error {
 public:
  using std::domain_error::domain_error;
};

/// A result would have more bits than the limit allows, or it has been given up to tell.
class ZELK_EXPORT TooLong : public std::length_error {
 public:
  using std::length_error::length_error;
};

}  // namespace zelk::real
