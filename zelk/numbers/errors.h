#pragma once

#include <stdexcept>

#include "zelk/config.h"

namespace zelk {

/// A zero denominator, a division by 0 or by an interval that holds it, or a negative power of
/// such.
class ZELK_EXPORT DivisionByZero : public std::domain_error {
 public:
  using std::domain_error::domain_error;
};

}  // namespace zelk
