#pragma once

#include <array>
#include <cstdint>

namespace zelk::hsh {

/// The bucket counts of every hash table: primes, each about twice the one before.
inline constexpr std::array<std::uint64_t, 28> primes = {
    31,       73,        151,       313,       643,        1291,       2593,
    5233,     10501,     21013,     42073,     84181,      168451,     337219,
    674701,   1349473,   2699299,   5398891,   10798093,   21596719,   43193641,
    86387383, 172775299, 345550609, 691101253, 1382202559, 2764405229, 4294867387};

}  // namespace zelk::hsh
