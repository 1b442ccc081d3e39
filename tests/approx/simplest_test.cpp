#include "zelk/approx/simplest.h"

#include <gmpxx.h>
#include <gtest/gtest.h>
#include <mpfr.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <numeric>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/random_number.h"
#include "tests/support/text_form.h"
#include "zelk/approx/best.h"
#include "zelk/approx/internal/quick_ends.h"
#include "zelk/approx/short_bounds.h"

namespace zelk::na {
namespace {

using test::number;
using test::show;
using test::to_number;
using test::to_rational;

struct Interval {
  mpq_class lower, upper;
  Ends ends = Ends::closed;

  bool left_open() const { return ends == Ends::left_open || ends == Ends::open; }
  bool right_open() const { return ends == Ends::right_open || ends == Ends::open; }
  bool holds(mpq_class const& x) const {
    return (left_open() ? lower < x : lower <= x) && (right_open() ? x < upper : x <= upper);
  }
  QNumber simplest() const { return simplest_between(to_number(lower), to_number(upper), ends); }
};

constexpr Ends all_ends[] = {Ends::closed, Ends::left_open, Ends::right_open, Ends::open};

/// All fractions in [-span, span] with denominators up to `limit`, from the simplest on.
std::vector<mpq_class> fractions(int limit, int span) {
  std::vector<mpq_class> all{0};
  for (int d = 1; d <= limit; ++d)
    for (int n = 1; n <= span * d; ++n)
      if (std::gcd(n, d) == 1)
        for (int const either : {n, -n}) all.emplace_back(either, d);
  return all;
}

TEST(Simplest, BetweenIsTheFirstOfAll) {
  constexpr int limit = 12;
  auto const all = fractions(2 * limit, 3);  // one at least between any two up to the limit
  std::vector<std::size_t> order(all.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](auto a, auto b) { return all[a] < all[b]; });
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < order.size(); ++i)
    if (all[order[i]].get_den() <= limit) places.push_back(i);
  for (std::size_t const i : places)
    for (std::size_t const j : places)
      for (Ends const ends : all_ends) {
        Interval const interval{all[order[i]], all[order[j]], ends};
        auto const from = order.begin() + static_cast<long>(i) + interval.left_open();
        auto const to = order.begin() + static_cast<long>(j) + !interval.right_open();
        if (from >= to)
          ASSERT_THROW(interval.simplest(), std::domain_error);
        else
          ASSERT_EQ(show(interval.simplest()), all[*std::min_element(from, to)].get_str());
      }
}

TEST(Simplest, BestIsTheBestOfAll) {
  constexpr int limit = 60;
  for (mpq_class const& q : fractions(limit, 2)) {
    QNumber const number = to_number(q, q.get_den() % 2 == 0);
    mpq_class below = -3, above = 3, nearest = 3;
    for (int d = 1; d <= limit; ++d) {
      mpz_class n = q.get_num() * d;
      mpz_fdiv_q(n.get_mpz_t(), n.get_mpz_t(), q.get_den_mpz_t());
      std::vector<mpq_class> sides{{n, d}, {n + (n * q.get_den() < q.get_num() * d), d}};
      if (abs(sides[1]) < abs(sides[0])) std::swap(sides[0], sides[1]);
      for (mpq_class& side : sides) {
        side.canonicalize();
        if (side <= q && side > below) below = side;
        if (side >= q && side < above) above = side;
        if (abs(side - q) < abs(nearest - q)) nearest = side;
      }
      ASSERT_EQ(show(best_below(number, d)), below.get_str()) << q << ' ' << d;
      ASSERT_EQ(show(best_above(number, d)), above.get_str()) << q << ' ' << d;
      ASSERT_EQ(show(best_nearest(number, d)), nearest.get_str()) << q << ' ' << d;
    }
  }
}

/// Whether no simpler number than x lies in the interval, which holds x: neither of the two whose
/// mediant it is does, p'/q' with p q' = 1 modulo q and the other, or the next integer toward 0.
bool is_simplest(Interval const& interval, mpq_class const& x) {
  if (!interval.holds(x)) return false;
  mpz_class const& p = x.get_num();
  mpz_class const& q = x.get_den();
  if (q == 1) return p == 0 || !interval.holds(p - sgn(p));
  mpz_class d;
  mpz_invert(d.get_mpz_t(), p.get_mpz_t(), q.get_mpz_t());
  mpz_class const n = (p * d - 1) / q;
  return !interval.holds(mpq_class(n, d)) && !interval.holds(mpq_class(p - n, q - d));
}

/// [a0; a1, ...] by floors.
std::vector<mpz_class> expansion(mpq_class const& x) {
  std::vector<mpz_class> terms;
  for (mpz_class n = x.get_num(), d = x.get_den(), a; d != 0; swap(n, d)) {
    mpz_fdiv_qr(a.get_mpz_t(), n.get_mpz_t(), n.get_mpz_t(), d.get_mpz_t());
    terms.push_back(a);
  }
  return terms;
}

void expect_common_terms(mpq_class const& lower, mpq_class const& upper) {
  auto const a = expansion(lower);
  auto const b = expansion(upper);
  auto const shared = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin();
  auto const terms = common_terms(to_number(lower), to_number(upper));
  ASSERT_EQ(static_cast<long>(terms.size()), shared);
  for (std::size_t i = 0; i < terms.size(); ++i)
    ASSERT_EQ(show(terms[i]), show(to_number(mpq_class(a[i]))));
}

TEST(Simplest, CommonTermsAreThoseOfBothEnds) {
  auto all = fractions(9, 2);
  std::sort(all.begin(), all.end());
  for (std::size_t i = 0; i < all.size(); ++i)
    for (std::size_t j = i; j < all.size(); ++j) expect_common_terms(all[i], all[j]);
}

/// [a0; a1, ...] with quotients from a source, until the denominator has so many bits.
template <class Quotient>
mpq_class expanded(mpz_class const& whole, std::size_t bits, Quotient quotient) {
  mpz_class h = whole, h0 = 1, k = 1, k0 = 0;
  while (mpz_sizeinbase(k.get_mpz_t(), 2) < bits) {
    mpz_class const a = quotient();
    h0 += a * h;
    k0 += a * k;
    swap(h, h0);
    swap(k, k0);
  }
  return {h, k};
}

/// As two exact searches have them.
void expect_shortened(mpq_class const& lower, mpq_class const& upper, mpq_class slack) {
  slack.canonicalize();
  auto const ends = shortened({to_number(lower), to_number(upper)}, to_number(slack));
  EXPECT_EQ(to_rational(ends.first), to_rational(Interval{lower - slack, lower}.simplest()));
  EXPECT_EQ(to_rational(ends.second), to_rational(Interval{upper, upper + slack}.simplest()));
}

TEST(Simplest, HoldsForNumbersOfAllSizes) {
  gmp_randclass random(gmp_randinit_default);
  for (std::size_t const bits : {20U, 63U, 64U, 65U, 130U, 700U, 3999U, 4000U, 9000U, 20000U})
    for (int shape = 0; shape < 12; ++shape) {
      SCOPED_TRACE(std::to_string(bits) + " bits, shape " + std::to_string(shape));
      std::size_t count = 0;
      mpq_class const centre = expanded(random.get_z_range(9) - 4, bits, [&]() -> mpz_class {
        ++count;
        if (shape % 4 == 0) return 1;                     // Fibonacci's ratios
        if (shape % 4 == 1 && count % 50 != 0) return 1;  // a long one among them
        if (shape % 4 <= 2) return random.get_z_bits(bits / 3) + 1;
        return random.get_z_bits(1 + count % 7) + 1;
      });
      // Narrower and wider than the centre's own length, and not in the middle.
      mpz_class const unit = mpz_class(1) << (shape < 4 ? bits : shape < 8 ? 3 * bits : 70);
      mpq_class const lower = centre - mpq_class(random.get_z_bits(5), unit + shape);
      mpq_class const upper = centre + mpq_class(1 + random.get_z_bits(5), unit);
      mpz_class const shift = random.get_z_bits(80);
      for (Ends const ends : all_ends) {
        Interval const interval{lower, upper, ends};
        mpq_class const x = to_rational(interval.simplest());
        EXPECT_TRUE(is_simplest(interval, x));
        if (shape >= 4 && shape < 8 && interval.holds(centre)) {
          EXPECT_EQ(x, centre);  // too narrow for any other so short
        }
        Interval const shifted{lower + shift, upper + shift, ends};
        EXPECT_TRUE(x.get_den() == 1 || to_rational(shifted.simplest()) == x + shift);
        auto const exchanged = ends == Ends::left_open    ? Ends::right_open
                               : ends == Ends::right_open ? Ends::left_open
                                                          : ends;
        EXPECT_EQ(to_rational(Interval{-upper, -lower, exchanged}.simplest()), -x);
        Interval const turned{1 / upper, 1 / lower, exchanged};
        EXPECT_TRUE(lower <= 0 || to_rational(turned.simplest()) == 1 / x);
      }
      expect_common_terms(lower, upper);
      expect_common_terms(centre, centre);
      for (mpz_class const& places : {unit, mpz_class(unit * 3), mpz_class(unit / 1000)})
        expect_shortened(centre, upper + shape % 3,
                         mpq_class(1 + random.get_z_bits(3), places + 1));

      for (mpz_class const& limit :
           {mpz_class(mpz_class(1) << bits / 2), mpz_class(centre.get_den() - 1)}) {
        if (limit < 1) continue;
        QNumber const q = to_number(centre);
        mpq_class const below = to_rational(best_below(q, to_number(limit)));
        mpq_class const above = to_rational(best_above(q, to_number(limit)));
        EXPECT_LT(below, centre);
        EXPECT_LT(centre, above);
        EXPECT_LE(std::max(below.get_den(), above.get_den()), limit);
        EXPECT_GT(below.get_den() + above.get_den(), limit);
        EXPECT_EQ(above.get_num() * below.get_den() - below.get_num() * above.get_den(), 1);
        EXPECT_EQ(to_rational(best_nearest(q, to_number(limit))),
                  centre - below < above - centre ? below : above);
      }
    }
}

TEST(Simplest, ShortenedIsSimplestWithinItsSlackAndAsShortAsItsWidth) {
  gmp_randclass random(gmp_randinit_default);
  std::vector<double> excess;
  for (unsigned i = 0; i < 2000; ++i) {
    mpz_class const unit = mpz_class(1) << (i % 300 + 8);
    mpq_class lower(random.get_z_bits(i % 300 + 10) - unit, unit * 3 + i % 5);
    mpq_class upper = lower + mpq_class(random.get_z_bits(3), unit * 7);
    mpq_class slack(1 + random.get_z_bits(2), i % 2 != 0 ? unit : unit * unit);
    for (mpq_class* const x : {&lower, &upper, &slack}) x->canonicalize();
    auto const [below, above] = shortened({to_number(lower), to_number(upper)}, to_number(slack));
    mpq_class const a = to_rational(below), b = to_rational(above);
    ASSERT_TRUE(is_simplest({lower - slack, lower}, a)) << lower << ' ' << slack;
    ASSERT_TRUE(is_simplest({upper, upper + slack}, b)) << upper << ' ' << slack;
    auto const bits = [](mpz_class const& n) { return mpz_sizeinbase(n.get_mpz_t(), 2); };
    mpq_class const width = upper - lower + 2 * slack;
    double const needed = 2.0 * static_cast<double>(bits(width.get_den() / width.get_num()));
    std::size_t own = 0;
    for (mpq_class const& end : {a, b}) own += bits(end.get_num()) + bits(end.get_den());
    excess.push_back(static_cast<double>(own) / needed);
  }
  std::nth_element(excess.begin(), excess.begin() + 1000, excess.end());
  EXPECT_NEAR(excess[1000], 1, 0.15);
  EXPECT_EQ(show(shortened({number("1/3"), number("1/2")}, number("0"), number("1/2"))), "1/3 1");
  // A simpler number just beyond the slack, on it, and just within it; and integers there.
  for (char const* const simple : {"1/3", "-22/7", "5", "-1"})
    for (char const* const distance : {"0", "1/1000000000000000000", "1/1000000000000000000000000"})
      for (int const sign : {-1, 1}) {
        mpq_class const beyond(mpq_class(simple) + sign * mpq_class(distance)), slack(1, 1024);
        expect_shortened(beyond + slack, beyond + 2 * slack, slack);
        expect_shortened(beyond - 2 * slack, beyond - slack, slack);
      }
}

TEST(Simplest, EndsAreFoundOnFewPlacesWhateverTheirIntegerPart) {
  for (unsigned const bits : {0U, 64U, 300U})
    for (int const sign : {-1, 1}) {
      mpq_class const x(sign *
                        ((mpz_class(1) << bits) + mpq_class("414213562373095/999999999999989")));
      QNumber const q = to_number(x), slack(1, 1L << 40);
      EXPECT_EQ(quickly_shortened(q, q, slack, slack), shortened({q, q}, slack)) << x;
    }
}

TEST(Simplest, ShortBoundsOfPi) {
  mpfr_t pi;
  mpfr_init2(pi, 20000);
  mpfr_const_pi(pi, MPFR_RNDN);
  mpz_class const one("10000000000000000000000000000000000000000");
  mpz_class const truth("31415926535897932384626433832795028841971");  // the floor of one * pi
  for (unsigned const prec : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 20U, 100U, 431U, 1000U, 5000U}) {
    auto const bounds = short_pi_bounds(prec);
    mpq_class const below = to_rational(bounds.first), above = to_rational(bounds.second);
    mpz_class unit;
    mpz_ui_pow_ui(unit.get_mpz_t(), 10, prec);
    EXPECT_LT(mpfr_cmp_q(pi, above.get_mpq_t()), 0) << prec;
    EXPECT_GT(mpfr_cmp_q(pi, below.get_mpq_t()), 0) << prec;
    EXPECT_LE((above - below) * unit, 1) << prec;
    if (prec > 6) continue;
    // Of all fractions, by their denominators, the first within half of the width on either side.
    mpq_class under, over;
    for (mpz_class d = 1; under == 0 || over == 0; ++d) {
      mpz_class const n = truth * d / one;
      mpz_class const room = d * one / (2 * unit);
      if (under == 0 && truth * d - n * one <= room) under = mpq_class(n, d);
      if (over == 0 && (n + 1) * one - truth * d <= room) over = mpq_class(n + 1, d);
    }
    EXPECT_EQ(below, under) << prec;
    EXPECT_EQ(above, over) << prec;
  }
  mpfr_clear(pi);
}

TEST(Simplest, RefusesWhatIsNoIntervalOrNoLimit) {
  QNumber const a(1), b(2);
  EXPECT_THROW((void)shortened({b, a}, 1), std::domain_error);
  EXPECT_THROW((void)shortened({a, b}, 1, -1), std::domain_error);
  EXPECT_THROW((void)shortened({a, b}, -1, 1), std::domain_error);
  EXPECT_THROW((void)common_terms(b, a), std::domain_error);
  for (char const* const limit : {"0", "-1", "3/2"})
    EXPECT_THROW((void)best_nearest(a, number(limit)), std::domain_error);
}

}  // namespace
}  // namespace zelk::na
