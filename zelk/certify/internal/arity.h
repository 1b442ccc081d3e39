#pragma once

#include <cstddef>

#include "zelk/real/expression.h"

namespace zelk::certify {

/// How many operands a kind takes.
inline std::size_t arity_of(real::Kind kind) {
  using real::Kind;
  switch (kind) {
    case Kind::number:
    case Kind::variable:
    case Kind::pi:
    case Kind::e:
      return 0;
    case Kind::sum:
    case Kind::difference:
    case Kind::product:
    case Kind::quotient:
    case Kind::power:
    case Kind::root:
      return 2;
    case Kind::negative:
    case Kind::exp:
    case Kind::log:
    case Kind::sqrt:
    case Kind::sin:
    case Kind::cos:
    case Kind::tan:
    case Kind::atan:
    case Kind::asin:
    case Kind::acos:
    case Kind::sinh:
    case Kind::cosh:
    case Kind::tanh:
      return 1;
  }
  return 0;
}

}  // namespace zelk::certify
