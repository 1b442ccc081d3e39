#include "zelk/real/internal/word_functions.h"

#include <array>
#include <cassert>

namespace zelk::real {

namespace {

__extension__ using Wide = __int128;

enum class Arc { tangent, hyperbolic_tangent };

/// atan or atanh of n/d over 2^100, within 40 units. Requires: n <= 32 n <= d.
constexpr Wide arc(Arc kind, long n, long d) {
  Wide power = (static_cast<Wide>(n) << 100) / d;
  Wide sum = power;
  for (long k = 3; power != 0; k += 2) {
    power = power * n / d * n / d;
    sum += kind == Arc::tangent && k % 4 == 3 ? -(power / k) : power / k;
  }
  return sum;
}

constexpr std::uint64_t to_word(Wide sum) { return static_cast<std::uint64_t>(sum >> 36); }

/// log(j/64) over 2^64, at j - first_log.
constexpr long first_log = 85;
constexpr auto logs = [] {
  std::array<std::uint64_t, 172 - first_log> table{};
  Wide sum = 0;
  for (long j = 64; j < 172; ++j) {
    if (j >= first_log) table[static_cast<std::size_t>(j - first_log)] = to_word(sum);
    sum += 2 * arc(Arc::hyperbolic_tangent, 1, 2 * j + 1);  // log((j + 1)/j)
  }
  return table;
}();

/// atan(j/32) over 2^64.
constexpr auto arcs = [] {
  std::array<std::uint64_t, 33> table{};
  Wide sum = 0;
  for (long j = 0; j <= 32; ++j) {
    table[static_cast<std::size_t>(j)] = to_word(sum);
    sum += arc(Arc::tangent, 32, 1024 + j * (j + 1));  // atan((j + 1)/32) - atan(j/32)
  }
  return table;
}();

/// d (1 ± d^2/3 + d^4/5 ± d^6/7 + d^8/9) over 2^64, of a d over 2^69. Requires: |d| <= 1/64.
std::int64_t arc_of_small(Arc kind, std::int64_t d) {
  auto const square = static_cast<std::int64_t>((static_cast<Wide>(d) * d) >> 74);  // over 2^64
  auto const by_square = [=](std::int64_t n) {
    auto const product = static_cast<std::int64_t>((static_cast<Wide>(n) * square) >> 64);
    return kind == Arc::tangent ? -product : product;
  };
  constexpr std::int64_t one = std::int64_t{1} << 62;
  std::int64_t sum = one / 9;
  for (int k : {7, 5, 3, 1}) sum = one / k + by_square(sum);
  return static_cast<std::int64_t>((static_cast<Wide>(d) * sum) >> 67);
}

}  // namespace

std::uint64_t log_of_word(std::uint64_t m) {
  // log m = log c + 2 atanh((m - c)/(m + c)) with c = j/64, at most 1/64 from m
  std::uint64_t const j = m >> 57 << 1 | 1;
  std::uint64_t const c = j << 56;
  assert(first_log <= static_cast<long>(j) && j < 172);
  Wide const difference = static_cast<Wide>(m) - c;
  Wide const sum = static_cast<Wide>(m) + c;
  auto const d = static_cast<std::int64_t>((difference * (Wide{1} << 69)) / sum);
  return logs[j - first_log] +
         2 * static_cast<std::uint64_t>(arc_of_small(Arc::hyperbolic_tangent, d));
}

std::uint64_t atan_of_word(std::uint64_t t) {
  assert(t <= std::uint64_t{1} << 63);
  // atan t = atan c + atan((t - c)/(1 + t c)) with c = j/32, at most 1/64 from t
  std::uint64_t const j = (t + (std::uint64_t{1} << 57)) >> 58;
  Wide const difference = static_cast<Wide>(t) - (static_cast<Wide>(j) << 58);
  Wide const sum = (Wide{1} << 63) + ((static_cast<Wide>(t) * j) >> 5);
  auto const d = static_cast<std::int64_t>((difference * (Wide{1} << 69)) / sum);
  return arcs[j] + static_cast<std::uint64_t>(arc_of_small(Arc::tangent, d));
}

}  // namespace zelk::real
