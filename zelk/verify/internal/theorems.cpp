#include "zelk/verify/internal/theorems.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "zelk/numbers/functions.h"
#include "zelk/verify/internal/value.h"

namespace zelk::verify {

namespace {

bool reaches_down(Value const& value, QNumber const& lower) {
  return is_ordered(above(lower), 0, value.low * below(lower), value.e);
}

bool reaches_up(Value const& value, QNumber const& upper) {
  return is_ordered(value.high * below(upper), value.e, above(upper), 0);
}

bool encloses(Case const& claim, QNumber const& lower, QNumber const& upper) {
  return !(lower < claim.lower) && !(claim.upper < upper);
}

long argument(QNumber const& q, long least, long most) {
  need(q.is_integer() && !(q < least) && !(most < q), "an argument out of range");
  return above(q).to_long();
}

long bits_of(Case const& claim) {
  long const bits = argument(claim.arguments.back(), 8, most_bits);
  claim.budget.spend_products(64, static_cast<double>(bits), 2);
  return bits;
}

/// The last three arguments; and whether each halving divides.
Effort effort_of(Case const& claim, bool divides = false) {
  auto const numbers = claim.arguments.last(3);
  long const bits = argument(numbers[2], 8, most_bits);
  long const halvings = argument(numbers[0], 0, bits - 1),
             terms = argument(numbers[1], 1, most_bits);
  claim.budget.spend_products(4.0 * static_cast<double>(halvings + terms + 16),
                              static_cast<double>(bits),
                              2 + (divides ? static_cast<double>(halvings) : 0));
  return {halvings, terms, bits};
}

bool number(Case const&) { return true; }

bool pi(Case const& claim) {
  long const terms = argument(claim.arguments[0], 8, most_bits);
  long const bits = argument(claim.arguments[1], 8, most_bits);
  claim.budget.spend(8 * static_cast<double>(terms) * static_cast<double>(bits));
  auto const value = pi_machin(terms, bits);
  return reaches_down(value, claim.lower) && reaches_up(value, claim.upper);
}

bool negative(Case const& claim) {
  return encloses(claim, -claim.premises[0]->upper, -claim.premises[0]->lower);
}

bool sum(Case const& claim) {
  auto const &x = *claim.premises[0], &y = *claim.premises[1];
  return encloses(claim, x.lower + y.lower, x.upper + y.upper);
}

bool difference(Case const& claim) {
  auto const &x = *claim.premises[0], &y = *claim.premises[1];
  return encloses(claim, x.lower - y.upper, x.upper - y.lower);
}

bool encloses_products(Case const& claim, QNumber const& lower, QNumber const& upper) {
  auto const& x = *claim.premises[0];
  auto const [least, greatest] =
      std::minmax({x.lower * lower, x.lower * upper, x.upper * lower, x.upper * upper});
  return encloses(claim, least, greatest);
}

bool product(Case const& claim) {
  return encloses_products(claim, claim.premises[1]->lower, claim.premises[1]->upper);
}

bool quotient(Case const& claim) {
  auto const& y = *claim.premises[1];
  need(y.lower.sign() > 0 || y.upper.sign() < 0, "the divisor may be 0");
  return encloses_products(claim, y.upper.inv(), y.lower.inv());
}

/// Whether t^(n/d) lies in the claim's interval for all t of the premise's.
bool powers_follow(Case const& claim, long n, long d, long bits) {
  auto const& x = *claim.premises[0];
  need(n > 0 || x.lower.sign() > 0 || x.upper.sign() < 0, "a power of 0");
  long size = bits;
  for (auto const* q : {&x.lower, &x.upper, &claim.lower, &claim.upper})
    size = std::max({size, above(*q).bits(), below(*q).bits()});
  claim.budget.spend_products(16 * static_cast<double>(Whole(n).bits() + Whole(d).bits()),
                              static_cast<double>(size));
  bool const is_even = n % 2 == 0;
  QNumber low = x.lower, high = x.upper;
  if (is_even && low.sign() < 0) {
    bool const is_negative = high.sign() <= 0;
    auto const farthest = is_negative ? -low : std::max(-low, high);
    low = is_negative ? -high : QNumber(0);
    high = farthest;
  }
  if (n < 0) swap(low, high);

  // Whether end <= t^(n/d), or end >= t^(n/d).
  auto const is_below = [&](QNumber const& end, QNumber const& t) {
    if (t.sign() >= 0 || is_even)
      return end.sign() <= 0 || powers_are_ordered(end, d, abs(t), n, bits);
    return end.sign() < 0 && powers_are_ordered(abs(t), n, -end, d, bits);
  };
  auto const is_above = [&](QNumber const& end, QNumber const& t) {
    if (t.sign() >= 0 || is_even)
      return end.sign() >= 0 && powers_are_ordered(abs(t), n, end, d, bits);
    return end.sign() >= 0 || powers_are_ordered(-end, d, abs(t), n, bits);
  };
  return is_below(claim.lower, low) && is_above(claim.upper, high);
}

QNumber const& point_of(Known const& premise) {
  need(premise.lower == premise.upper, "not a point");
  return premise.lower;
}

bool power(Case const& claim) {
  long const bits = bits_of(claim);
  auto const& exponent = point_of(*claim.premises[1]);
  need(exponent.is_integer() || claim.premises[0]->lower.sign() >= 0,
       "a fractional power of what may be negative");
  if (exponent.is_zero()) return encloses(claim, 1, 1);
  long const most = most_exponent - 1;
  return powers_follow(claim, argument(numerator(exponent), -most, most),
                       argument(denominator(exponent), 1, most), bits);
}

bool root(Case const& claim) {
  long const bits = bits_of(claim);
  long const degree = argument(point_of(*claim.premises[1]), 1, most_exponent - 1);
  need(degree % 2 != 0 || claim.premises[0]->lower.sign() >= 0,
       "an even root of what may be negative");
  return powers_follow(claim, 1, degree, bits);
}

bool power_by_exp(Case const& claim) {
  auto const &x = *claim.premises[0], &exponent = *claim.premises[1], &value = *claim.premises[2];
  need(x.lower.sign() > 0, "a power of what may not be positive");
  need(value.text == "exp((" + exponent.text + " * log(" + x.text + ")))",
       "a premise about something else");
  return encloses(claim, value.lower, value.upper);
}

/// Of a function that grows, at the one end; and at the other.
bool lie_within(Case const& claim, Value const& least, Value const& greatest) {
  return reaches_down(least, claim.lower) && reaches_up(greatest, claim.upper);
}

/// From values at x >= 0, where they are none below 0.
template <Value (*value_at)(QNumber const& x, Effort const& effort)>
Value odd(QNumber const& x, Effort const& effort) {
  auto value = value_at(abs(x), effort);
  value.low = std::max(value.low, Whole());
  return x.sign() < 0 ? opposite(value) : value;
}

template <Value (*value_at)(QNumber const& x, Effort const& effort), bool divides = false>
bool increasing(Case const& claim) {
  auto const effort = effort_of(claim, divides);
  auto const& x = *claim.premises[0];
  auto const first = value_at(x.lower, effort);
  return reaches_down(first, claim.lower) &&
         reaches_up(x.lower == x.upper ? first : value_at(x.upper, effort), claim.upper);
}

bool acos(Case const& claim) {
  auto const effort = effort_of(claim, true);
  auto const& x = *claim.premises[0];
  auto const least = acos_at(x.upper, effort);
  return reaches_down(least, claim.lower) &&
         reaches_up(x.lower == x.upper ? least : acos_at(x.lower, effort), claim.upper);
}

bool cosh(Case const& claim) {
  auto const effort = effort_of(claim);
  auto const [nearest, farthest] =
      std::minmax({abs(claim.premises[0]->lower), abs(claim.premises[0]->upper)});
  bool const holds_zero =
      claim.premises[0]->lower.sign() <= 0 && claim.premises[0]->upper.sign() >= 0;
  return lie_within(claim, cosh_at(holds_zero ? QNumber(0) : nearest, effort),
                    cosh_at(farthest, effort));
}

/// A lower bound of log a is one if its exponential is at most a, and an upper bound likewise.
bool log(Case const& claim) {
  auto const& x = *claim.premises[0];
  need(x.lower.sign() > 0, "a logarithm of what may not be positive");
  auto const effort = effort_of(claim);
  return reaches_up(exp_at(claim.lower, effort), x.lower) &&
         reaches_down(exp_at(claim.upper, effort), x.upper);
}

/// The only argument, for sums of powers of x.
long terms_of(Case const& claim, QNumber const& x, long least) {
  long const terms = argument(claim.arguments[0], least, most_bits);
  auto const count = static_cast<double>(terms);
  auto const size = static_cast<double>(Whole(terms).bits() + above(x).bits() + below(x).bits());
  claim.budget.spend_products(2 * count * count, size);
  claim.budget.spend(std::floor(count * size * count * size / 8));
  return terms;
}

bool exp_partial_sum(Case const& claim) {
  auto const& x = point_of(*claim.premises[0]);
  long const terms = terms_of(claim, x, 0);
  if (x.is_zero()) return encloses(claim, 1, 1);
  Whole const p = above(x), q = below(x);
  Whole total, term = 1, over = 1;
  for (long k = 1; k <= terms; ++k) {
    total = (total + term) * q * k;
    term = term * p;
    over = over * q * k;
  }
  auto const is_at_least = [](Whole const& n, Whole const& d, QNumber const& end) {
    return above(end) * d <= n * below(end);
  };
  auto const is_at_most = [](Whole const& n, Whole const& d, QNumber const& end) {
    return n * below(end) <= above(end) * d;
  };
  if (x.sign() > 0) {
    need(term < over, "too few terms");
    return is_at_least(total, over, claim.lower) && is_at_most(total, over - term, claim.upper);
  }
  need(!(x < -(terms + 1)), "too few terms");
  auto const [least, greatest] = std::minmax({total, total + term});
  return is_at_least(least, over, claim.lower) && is_at_most(greatest, over, claim.upper);
}

/// The powers first, first + 2, ... below n, and the power n for the error.
template <long first>
bool alternating_sum(Case const& claim) {
  auto const& x = point_of(*claim.premises[0]);
  long const terms = terms_of(claim, x, 1);
  Whole const p = above(x), q = below(x);
  Whole total, term = 1, over = 1;
  for (long k = 0; k < terms; ++k) {
    if (k % 2 == first) total = k % 4 > 1 ? total - term : total + term;
    Whole const factor = q * (k + 1);
    total = total * factor;
    term = term * p;
    over = over * factor;
  }
  term = magnitude_of(term);
  return above(claim.lower) * over <= (total - term) * below(claim.lower) &&
         (total + term) * below(claim.upper) <= above(claim.upper) * over;
}

/// Sine and cosine at the ends of an interval, and how many multiples of pi/2 lie at or below them.
struct Arc {
  QNumber first_turns;
  QNumber last_turns;
  Turned first;
  Turned last;
  long bits;
};

Arc arc_of(Case const& claim) {
  auto const &x = *claim.premises[0], &pi = *claim.premises[1];
  need(pi.text == "pi" && pi.lower.sign() > 0, "a premise that is not about pi");
  auto const &first = claim.arguments[0], &last = claim.arguments[1];
  need(first.is_integer() && last.is_integer(), "an argument out of range");
  auto const is_between = [&](QNumber const& end, QNumber const& turns) {
    auto const [least, greatest] = std::minmax({turns * pi.lower / 2, turns * pi.upper / 2});
    auto const [next, farthest] =
        std::minmax({(turns + 1) * pi.lower / 2, (turns + 1) * pi.upper / 2});
    return !(end < greatest) && end < next;
  };
  need(is_between(x.lower, first) && is_between(x.upper, last), "wrong number of quarter turns");
  auto const effort = effort_of(claim);
  auto const at_lower = turned(x.lower, first, pi.lower, pi.upper, effort);
  return {first, last, at_lower,
          x.lower == x.upper ? at_lower : turned(x.upper, last, pi.lower, pi.upper, effort),
          effort.bits};
}

/// Whether a number k with k = remainder modulo `modulus` lies from `first` to `last`.
bool is_passed(QNumber const& first, QNumber const& last, long remainder, long modulus) {
  return !(last < ceil((first - remainder) / modulus) * modulus + remainder);
}

/// The sine, or the cosine, which is 1 at the multiples 4k + top of pi/2.
template <long top, Value Turned::*part>
bool wave(Case const& claim) {
  auto const arc = arc_of(claim);
  auto low = std::min((arc.first.*part).low, (arc.last.*part).low);
  auto high = std::max((arc.first.*part).high, (arc.last.*part).high);
  // The only multiple that is rational is 0.
  auto const begin = claim.premises[0]->lower.is_zero() ? arc.first_turns : arc.first_turns + 1;
  Whole const one = Whole(1) << arc.bits;
  if (is_passed(begin, arc.last_turns, (top + 2) % 4, 4)) low = -one;
  if (is_passed(begin, arc.last_turns, top, 4)) high = one;
  Value const value{low, high, arc.bits};
  return lie_within(claim, value, value);
}

bool tan(Case const& claim) {
  auto const arc = arc_of(claim);
  need(!is_passed(arc.first_turns + 1, arc.last_turns, 1, 2), "a pole");
  return lie_within(claim, tan_of(arc.first), tan_of(arc.last));
}

constexpr std::array theorems = {
    Theorem{"number", 0, 0, "", number},
    Theorem{"pi_machin", 0, 2, "pi", pi},
    Theorem{"negative", 1, 0, "(-#)", negative},
    Theorem{"sum", 2, 0, "(# + #)", sum},
    Theorem{"difference", 2, 0, "(# - #)", difference},
    Theorem{"product", 2, 0, "(# * #)", product},
    Theorem{"quotient", 2, 0, "(# / #)", quotient},
    Theorem{"power", 2, 1, "(# ^ #)", power},
    Theorem{"power_by_exp", 3, 0, "(# ^ #)", power_by_exp},
    Theorem{"root_by_power", 2, 1, "root(#, #)", root},
    Theorem{"exp_taylor", 1, 3, "exp(#)", increasing<exp_at>},
    Theorem{"exp_partial_sum", 1, 1, "exp(#)", exp_partial_sum},
    Theorem{"log_by_exp", 1, 3, "log(#)", log},
    Theorem{"sin_taylor", 2, 5, "sin(#)", wave<1, &Turned::sine>},
    Theorem{"cos_taylor", 2, 5, "cos(#)", wave<0, &Turned::cosine>},
    Theorem{"sin_partial_sum", 1, 1, "sin(#)", alternating_sum<1>},
    Theorem{"cos_partial_sum", 1, 1, "cos(#)", alternating_sum<0>},
    Theorem{"tan_taylor", 2, 5, "tan(#)", tan},
    Theorem{"atan_series", 1, 3, "atan(#)", increasing<odd<atan_at>, true>},
    Theorem{"asin_series", 1, 3, "asin(#)", increasing<odd<asin_at>, true>},
    Theorem{"acos_series", 1, 3, "acos(#)", acos},
    Theorem{"sinh_taylor", 1, 3, "sinh(#)", increasing<odd<sinh_at>>},
    Theorem{"cosh_taylor", 1, 3, "cosh(#)", cosh},
    Theorem{"tanh_taylor", 1, 3, "tanh(#)", increasing<odd<tanh_at>>},
};

}  // namespace

Theorem const* find_theorem(std::string_view name) {
  auto const* const found = std::ranges::find(theorems, name, &Theorem::name);
  return found == theorems.end() ? nullptr : found;
}

}  // namespace zelk::verify
