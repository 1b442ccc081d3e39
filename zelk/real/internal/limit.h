#pragma once

namespace zelk::real {

/// Why a `TooLong` is thrown.
inline constexpr char beyond_limit[] = "a result would have more bits than the limit allows";

}  // namespace zelk::real
