#include "zelk/approx/internal/quick_ends.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "zelk/approx/internal/narrow_expansion.h"
#include "zelk/numbers/integer.h"
#include "zelk/numbers/internal/leading_bits.h"

namespace zelk::na {

namespace {

// In units of the last place the lesser slack is 2^spare_bits at least: one search in so many, or a
// few, has to be done again exactly. Greater slacks, and distances, fit in a word.
constexpr long spare_bits = 32;
constexpr std::size_t most_bits = 62;

/// How many places bring the slack to that.
long places_for(QNumber const& slack) {
  return spare_bits + 1 + static_cast<long>(mpz_sizeinbase(slack.denominator(), 2)) -
         static_cast<long>(mpz_sizeinbase(slack.numerator(), 2));
}

/// q 2^places, rounded by one of GMP's divisions.
void set_scaled(Integer& out, QNumber const& q, mp_bitcnt_t places, bool is_up) {
  auto const d = q.denominator();
  mpz_mul_2exp(out, q.numerator(), places);
  if (mp_bitcnt_t const shift = mpz_sizeinbase(d, 2) - 1; mpz_scan1(d, 0) == shift)
    (is_up ? mpz_cdiv_q_2exp : mpz_fdiv_q_2exp)(out, out, shift);
  else
    (is_up ? mpz_cdiv_q : mpz_fdiv_q)(out, out, d);
}

/// One end and where it may go: from `inner` to `outer`, in units, and a little farther.
struct End {
  End(QNumber const& end_value, QNumber const& end_slack, mp_bitcnt_t places, bool is_low)
      : value(end_value), slack(end_slack), is_lower(is_low) {
    set_scaled(inner, value, places, is_lower);
    set_scaled(outer, value, places, !is_lower);
    Integer room;
    set_scaled(room, slack, places, true);
    (is_lower ? mpz_sub : mpz_add)(outer, outer, room);
  }

  Integer const& low() const { return is_lower ? outer : inner; }
  Integer const& high() const { return is_lower ? inner : outer; }

  /// The number next to the end of all with the denominator q, unless it is too far.
  std::optional<QNumber> over(Integer const& q) const {
    Integer p, rest, room;
    mpz_mul(p, value.numerator(), q);
    (is_lower ? mpz_fdiv_qr : mpz_cdiv_qr)(p, rest, p, value.denominator());
    // |value - p/q| is rest/(q d).
    mpz_mul(room, q, slack.numerator());
    if (mpz_sgn(rest.get()) != 0) {
      Integer left, right;
      if (compare_products(rest, slack.denominator(), room, value.denominator(), left, right) > 0)
        return std::nullopt;
    }
    return QNumber::from_lowest_terms({p, q});
  }

  QNumber const& value;
  QNumber const& slack;
  bool is_lower;
  Integer inner, outer;
};

/// b - a, if it is short. Requires: a <= b.
std::optional<unsigned long> distance(Integer const& a, Integer const& b) {
  Integer difference;
  mpz_sub(difference, b, a);
  if (mpz_sizeinbase(difference, 2) > most_bits) return std::nullopt;
  return mpz_get_ui(difference);
}

/// The expansion of all between two integers over 2^places, from which what is between is found.
class Search {
 public:
  Search(Integer const& lower, unsigned long width, mp_bitcnt_t places)
      : origin(lower), x(lower, width, places), is_possible(x.split_all()) {}

  std::optional<QNumber> simplest(End const& end) {
    if (!is_possible) return std::nullopt;
    Integer q;
    x.set_least_denominator(q, *distance(origin, end.low()), *distance(origin, end.high()));
    return end.over(q);
  }

 private:
  Integer const& origin;
  NarrowExpansion x;
  bool is_possible;
};

/// The simplest number where the end may go.
std::optional<QNumber> simplest(End const& end, mp_bitcnt_t places) {
  auto const width = distance(end.low(), end.high());
  if (!width) return std::nullopt;
  return Search(end.low(), *width, places).simplest(end);
}

}  // namespace

std::optional<std::pair<QNumber, QNumber>> quickly_shortened(QNumber const& lower,
                                                             QNumber const& upper,
                                                             QNumber const& lower_slack,
                                                             QNumber const& upper_slack) {
  if (lower_slack.is_zero() || upper_slack.is_zero()) return std::nullopt;
  long const wanted = std::max(places_for(lower_slack), places_for(upper_slack));
  if (wanted <= 0) return std::nullopt;
  auto const places = static_cast<mp_bitcnt_t>(wanted);
  End const below(lower, lower_slack, places, true), above(upper, upper_slack, places, false);
  if (mpz_cmp(below.high(), above.low()) > 0 && upper < lower) return std::nullopt;

  std::optional<QNumber> low, high;
  if (auto const width = distance(below.low(), above.high())) {
    Search both(below.low(), *width, places);  // what they have in common is expanded once
    low = both.simplest(below);
    if (low) high = both.simplest(above);
  } else {
    low = simplest(below, places);
    if (low) high = simplest(above, places);
  }
  if (!low || !high) return std::nullopt;
  return std::pair(std::move(*low), std::move(*high));
}

}  // namespace zelk::na
