#include "zelk/real/internal/limit.h"

#include <cmath>
#include <cstdio>

#include "zelk/real/errors.h"

namespace zelk::real {

double room_for_chords(double bits) {
  // About 2.2 n^(1/3) powers of n limbs: see `Plan` in chord.cpp.
  return room_on_the_way + 2.2 * std::cbrt(bits / 64);
}

void require_room(double bits, double max_bits, double times) {
  if (bits * times <= max_bits) return;
  constexpr double greatest_told = 0x1p62;
  char text[160];
  std::snprintf(text, sizeof text,
                "a result of %s%.2g bits would take %.2g on the way, more bits than the limit "
                "allows: %.3g",
                bits < greatest_told ? "" : "more than ", bits, bits * times, max_bits);
  throw TooLong(text);
}

}  // namespace zelk::real
