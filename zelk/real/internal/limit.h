#pragma once

namespace zelk::real {

/// Why a `TooLong` is thrown that no size tells more of.
inline constexpr char beyond_limit[] = "a result would have more bits than the limit allows";

/// How many times the length of a result its function, the search for short ends and its text take
/// in all: 24 to 42 times were measured, from 10^6 bits on.
inline constexpr double room_on_the_way = 32;

/// The same of functions that sum a chord's series, whose powers are kept; their number grows with
/// the cube root of the length.
double room_for_chords(double bits);

/// Throws: TooLong if a result of so many bits takes more than max_bits bits of memory.
void require_room(double bits, double max_bits, double times = room_on_the_way);

}  // namespace zelk::real
