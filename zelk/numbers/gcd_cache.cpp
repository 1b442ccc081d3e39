#include "zelk/numbers/gcd_cache.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>

namespace zelk {

constinit long gcd_cache[gcd_cache_limit + 1][gcd_cache_limit + 1] = {};

namespace detail {

constinit bool has_all_gcds = false;

namespace {

constexpr long row = gcd_cache_limit + 1;

/// Every cell [b][a] with 1 <= a < b before this one, row by row, has been seen filled.
constinit long seen_before = 2 * row + 1;

/// The first such cell from `cell` on that is empty, or the end of the table.
long next_empty(long cell) {
  for (; cell < row * row; ++cell) {
    long const a = cell % row;
    long const b = cell / row;
    if (1 <= a && a < b && __atomic_load_n(&gcd_cache[b][a], __ATOMIC_RELAXED) == 0) break;
  }
  return cell;
}

/// Goes on from the cell that was empty last: one pass in all, and one more to make sure, since a
/// host may have cleared what was seen.
void look_for_empty() {
  long cell = next_empty(__atomic_load_n(&seen_before, __ATOMIC_RELAXED));
  if (cell == row * row) cell = next_empty(0);
  __atomic_store_n(&seen_before, cell, __ATOMIC_RELAXED);
  __atomic_store_n(&has_all_gcds, cell == row * row, __ATOMIC_RELAXED);
}

void enter(long a, long b, long gcd) {
  __atomic_store_n(&gcd_cache[b][a], gcd, __ATOMIC_RELAXED);
  __atomic_store_n(&gcd_cache[a][b], gcd, __ATOMIC_RELAXED);
}

/// Descents that take their steps together: pairs a >= b, in words or, which most processors divide
/// faster, half words.
template <class Word, std::size_t n>
struct Descents {
  /// Until one of them comes to the table or its end, or all fit half words. Beyond the table the
  /// order of steps does not matter.
  void advance_all() {
    while (least(a) > gcd_cache_limit && least(b) > 1 &&
           (sizeof(Word) == sizeof(std::uint32_t) || !fit_half()))
      for (std::size_t i = 0; i < n; ++i) advance(i);
  }

  void advance(std::size_t i) {
    Word const remainder = a[i] % b[i];
    a[i] = b[i];
    b[i] = remainder;
  }

  bool fit_half() const {
    return *std::max_element(a.begin(), a.end()) <= std::numeric_limits<std::uint32_t>::max();
  }

  std::array<Word, n> a, b;

 private:
  // Not those of std::ranges: unless optimised away they are unique symbols, and a plugin that has
  // one stays loaded.
  static Word least(std::array<Word, n> const& words) {
    return *std::min_element(words.begin(), words.end());
  }
};

}  // namespace

long enter_gcd(long a, long b) {
  assert(0 <= a && a <= gcd_cache_limit && 1 <= b && b <= gcd_cache_limit);
  // If a < b, the next pair is the same in the other order, and known by then.
  long const remainder = a % b;
  long const gcd = a < b ? std::gcd(a, b) : remainder == 0 ? b : cached_gcd(b, remainder);
  enter(a, b, gcd);
  if (a != 0 && a != b) look_for_empty();
  return gcd;
}

template <std::same_as<WordPair>... Pairs>
std::array<long, sizeof...(Pairs)> descend_together(Pairs... pairs) {
  constexpr std::size_t n = sizeof...(Pairs);
  std::array<WordPair, n> const given = {pairs...};
  Descents<std::uint64_t, n> whole;
  bool is_short = true;  // in the table after two steps at most
  for (std::size_t i = 0; i < n; ++i) {
    auto const [b, a] = std::minmax(given[i].a, given[i].b);
    whole.a[i] = static_cast<std::uint64_t>(a);
    whole.b[i] = static_cast<std::uint64_t>(b);
    is_short &= b <= gcd_cache_limit;
  }
  std::array<long, n> gcds;
  if (is_short) {
    for (std::size_t i = 0; i < n; ++i) gcds[i] = cached_gcd(given[i].a, given[i].b);
    return gcds;
  }
  whole.advance_all();
  if (whole.fit_half()) {
    Descents<std::uint32_t, n> half;
    std::copy(whole.a.begin(), whole.a.end(), half.a.begin());
    std::copy(whole.b.begin(), whole.b.end(), half.b.begin());
    half.advance_all();
    for (std::size_t i = 0; i < n; ++i)
      while (half.a[i] > gcd_cache_limit && half.b[i] > 1) half.advance(i);
    std::copy(half.a.begin(), half.a.end(), whole.a.begin());
    std::copy(half.b.begin(), half.b.end(), whole.b.begin());
  }
  for (std::size_t i = 0; i < n; ++i) {
    // In the table the order counts: a pair that stands there is looked at as it was given.
    if (given[i].is_in_table())
      gcds[i] = cached_gcd(given[i].a, given[i].b);
    else if (whole.b[i] == 0)
      gcds[i] = static_cast<long>(whole.a[i]);
    else
      gcds[i] = cached_gcd(static_cast<long>(whole.a[i]), static_cast<long>(whole.b[i]));
  }
  return gcds;
}

template std::array<long, 2> descend_together(WordPair, WordPair);
template std::array<long, 3> descend_together(WordPair, WordPair, WordPair);

}  // namespace detail

void fill_gcd_cache() {
  for (long b = 1; b <= gcd_cache_limit; ++b) {
    detail::enter(0, b, b);
    // From pairs of rows before this one.
    for (long a = 1; a <= b; ++a)
      detail::enter(a, b, __atomic_load_n(&gcd_cache[b - a][a], __ATOMIC_RELAXED));
  }
  detail::look_for_empty();
}

}  // namespace zelk
