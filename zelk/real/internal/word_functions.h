#pragma once

#include <cstdint>

namespace zelk::real {

/// log m within 4 units of 2^-64, of an m over 2^62. Requires: 21/16 <= m < 43/16.
std::uint64_t log_of_word(std::uint64_t m);

/// atan t within 4 units of 2^-64, of a t over 2^63. Requires: t <= 1.
std::uint64_t atan_of_word(std::uint64_t t);

}  // namespace zelk::real
