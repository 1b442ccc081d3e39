#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "zelk/numbers/q_number.h"

namespace zelk::verify {

/// That all values of what a theorem is about lie in [lower, upper]: what it is about follows from
/// its arguments and its premises. docs/certificates.md lists the theorems.
struct Claim {
  std::string theorem;
  std::vector<std::size_t> arguments;
  std::vector<std::size_t> premises;  // numbers of claims, counted from 1, that stand before
  QNumber lower;
  QNumber upper;
};

/// Claims each of which follows from those before it. The last is what is to be shown, and the
/// statement says what it is about.
struct [[nodiscard]] Certificate {
  std::string statement;
  std::vector<Claim> claims;
};

}  // namespace zelk::verify
