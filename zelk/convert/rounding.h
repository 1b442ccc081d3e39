#pragma once

namespace zelk::convert {

/// Which neighbour takes the place of a value that a format cannot hold; a value that it can hold
/// stays as it is, whatever the rounding. The directions are those of the number line, also left of
/// zero: `down` takes -1/3 to -0.34.
enum class Rounding {
  down,     ///< the greatest one that is at most the value
  up,       ///< the least one that is at least the value
  nearest,  ///< the closest one, and of two equally close the one whose last digit or bit is even
};

}  // namespace zelk::convert
