#include "zelk/verify/internal/theorems.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <initializer_list>

#include "zelk/numbers/functions.h"

namespace zelk::verify {

namespace {

bool number(Case&) { return true; }

bool encloses(Case const& claim, std::initializer_list<QNumber> values) {
  auto const [least, greatest] = std::minmax(values);
  return !(least < claim.lower) && !(claim.upper < greatest);
}

bool lies_in(Known const& x, QNumber const& lower, QNumber const& upper) {
  return !(x.lower < lower) && !(upper < x.upper);
}

bool negative(Case& claim) {
  auto const& x = *claim.premises[0];
  return encloses(claim, {-x.lower, -x.upper});
}

/// Operations that are monotone in each operand.
template <class Operation>
bool corners(Case& claim) {
  if (claim.budget.only_counts()) return true;
  Operation const operation;
  auto const &x = *claim.premises[0], &y = *claim.premises[1];
  return encloses(claim, {operation(x.lower, y.lower), operation(x.lower, y.upper),
                          operation(x.upper, y.lower), operation(x.upper, y.upper)});
}

bool quotient(Case& claim) {
  auto const& y = *claim.premises[1];
  return (y.lower.sign() > 0 || y.upper.sign() < 0) && corners<std::divides<>>(claim);
}

/// x^k, with the sign of x.
QNumber raised(QNumber const& x, long k) {
  auto power = pow(x, k);
  return x.sign() < 0 && k % 2 == 0 ? -power : power;
}

long longest_part(QNumber const& a, QNumber const& b) {
  return std::max({above(a).bits(), below(a).bits(), above(b).bits(), below(b).bits()});
}

/// Whether x^(n/d) lies in the claim's interval for all x of the premise's.
bool powers_follow(Case& claim, QNumber const& n_as_number, QNumber const& d_as_number) {
  auto const& x = *claim.premises[0];
  need(!(most_bits < std::max(abs(n_as_number), d_as_number)), "an argument out of range");
  long const n = above(n_as_number).to_long(), d = above(d_as_number).to_long();
  long const longest = std::max(std::abs(n) * longest_part(x.lower, x.upper),
                                d * longest_part(claim.lower, claim.upper));
  claim.budget.spend(16, static_cast<double>(longest));
  if (claim.budget.only_counts()) return true;
  if (n == 0) return encloses(claim, {1, 1});
  auto least = n > 0 ? x.lower : x.upper.inv(), greatest = n > 0 ? x.upper : x.lower.inv();
  if (n % 2 == 0) {
    auto const farthest = std::max(-least, greatest);
    least = std::max({least, -greatest, QNumber(0)});
    greatest = farthest;
  }
  long const m = std::abs(n);
  return !(raised(least, m) < raised(claim.lower, d)) &&
         !(raised(claim.upper, d) < raised(greatest, m));
}

bool power(Case& claim) {
  auto const &x = *claim.premises[0], &y = *claim.premises[1];
  auto const& exponent = y.lower;
  return exponent == y.upper && (x.lower.sign() >= 0 || exponent.is_integer()) &&
         (exponent.sign() >= 0 || x.lower.sign() > 0 || x.upper.sign() < 0) &&
         powers_follow(claim, numerator(exponent), denominator(exponent));
}

bool root(Case& claim) {
  auto const &x = *claim.premises[0], &y = *claim.premises[1];
  return y.lower == y.upper && y.lower.is_integer() && y.lower.sign() > 0 &&
         (x.lower.sign() >= 0 || above(y.lower).is_odd()) && powers_follow(claim, 1, y.lower);
}

/// What a power of a positive number means, which the third premise is about.
bool is_enclosed_by(Case& claim, std::string const& meaning) {
  auto const &x = *claim.premises[0], &value = *claim.premises[2];
  need(value.text == meaning, "a premise about something else");
  return x.lower.sign() > 0 && encloses(claim, {value.lower, value.upper});
}

bool power_by_exp(Case& claim) {
  auto const &x = *claim.premises[0], &y = *claim.premises[1];
  return is_enclosed_by(claim, "exp((" + y.text + " * log(" + x.text + ")))");
}

bool root_by_exp(Case& claim) {
  auto const &x = *claim.premises[0], &y = *claim.premises[1];
  return is_enclosed_by(claim, "exp((log(" + x.text + ") / " + y.text + "))");
}

bool pi(Case& claim) {
  return claim.lower.sign() > 0 && claim.upper < 6 &&
         claim.series.surely(sin_function, claim.lower, 1, 0) &&
         claim.series.surely(sin_function, claim.upper, -1, 0);
}

/// Functions that grow, even ones with |x|.
template <Function const& function, bool is_even = false>
bool growing(Case& claim) {
  auto const& [text, a, b, bits] = *claim.premises[0];
  return claim.series.surely(function, is_even ? std::max({a, -b, QNumber(0)}) : a, 1,
                             claim.lower) &&
         claim.series.surely(function, is_even ? std::max(-a, b) : b, -1, claim.upper);
}

/// The ends of up to three equal pieces, each at most 3 < pi long; none of what is wider.
std::vector<QNumber> ends_of_pieces(Known const& x) {
  auto const width = x.upper - x.lower;
  if (9 < width) return {};
  long const pieces = above(ceil(width / 3)).to_long();
  std::vector<QNumber> ends{x.lower};
  for (long i = 1; i <= pieces; ++i) ends.push_back(x.lower + width * i / pieces);
  return ends;
}

/// The slope is sign * slope. In a piece it changes its sign once at most, at an extremum 1 or -1,
/// from which an end of the piece is at most 3/2 < pi/2 away: there the value has its sign.
template <Function const& function, Function const& slope, int sign>
bool wave(Case& claim) {
  auto const& x = *claim.premises[0];
  auto const &l = claim.lower, &u = claim.upper;
  if (!(-1 < l) && !(u < 1)) return true;
  auto const points = ends_of_pieces(x);
  // Of -1 where it may be, and of what has no negative values.
  bool const is_clear_below = !(-1 < l) || l.sign() >= 0;
  bool const is_clear_above = !(u < 1) || u.sign() <= 0;
  std::vector<bool> rises, falls;
  for (auto const& point : points) rises.push_back(claim.series.surely(slope, point, sign, 0));
  for (auto const& point : points) falls.push_back(claim.series.surely(slope, point, -sign, 0));
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (!claim.series.surely(function, points[i], 1, l) ||
        !claim.series.surely(function, points[i], -1, u))
      return false;
    if (i == 0) continue;
    if (!(is_clear_above || falls[i - 1] || rises[i]) ||
        !(is_clear_below || rises[i - 1] || falls[i]))
      return false;
  }
  return !points.empty();
}

bool tan(Case& claim) {
  auto const& x = *claim.premises[0];
  auto const points = ends_of_pieces(x);
  auto const follows = [&](int sign) {
    return std::ranges::all_of(
               points,
               [&](auto const& t) { return claim.series.surely(cos_function, t, sign, 0); }) &&
           claim.series.surely(tan_function, x.lower, sign, claim.lower) &&
           claim.series.surely(tan_function, x.upper, -sign, claim.upper);
  };
  return !points.empty() && (follows(1) || follows(-1));
}

bool log(Case& claim) {
  auto const& x = *claim.premises[0];
  return claim.series.surely(exp_function, claim.lower, -1, x.lower) &&
         claim.series.surely(exp_function, claim.upper, 1, x.upper);
}

/// Inverses of the sine and the tangent between -pi/2 and pi/2, beyond which the cosine is
/// negative.
template <Function const& function, bool is_bounded>
bool arc(Case& claim) {
  auto const& x = *claim.premises[0];
  auto const is_below = [&](QNumber const& t, QNumber const& value) {
    bool const is_beyond = claim.series.surely(cos_function, t, -1, 0);
    bool const is_between = claim.series.surely(cos_function, t, 1, 0);
    bool const is_negative = t.sign() < 0;
    return (is_negative && is_beyond) ||
           ((is_negative || is_between) && claim.series.surely(function, t, -1, value));
  };
  return (!is_bounded || lies_in(x, -1, 1)) && !(claim.lower < -3) && !(3 < claim.upper) &&
         is_below(claim.lower, x.lower) && is_below(-claim.upper, -x.upper);
}

bool acos(Case& claim) {
  auto const& x = *claim.premises[0];
  auto const &l = claim.lower, &u = claim.upper;
  auto& series = claim.series;
  return lies_in(x, -1, 1) && u.sign() >= 0 && !(6 < u) &&
         (l.sign() <= 0 || ((!(3 < l) || series.surely(sin_function, l, 1, 0)) &&
                            series.surely(cos_function, l, 1, x.upper))) &&
         ((!(u < 3) && series.surely(sin_function, u, -1, 0)) ||
          series.surely(cos_function, u, -1, x.lower));
}

constexpr std::array theorems = {
    Theorem{"number", 0, 0, "", number},
    Theorem{"negative", 1, 0, "(-#)", negative},
    Theorem{"sum", 2, 0, "(# + #)", corners<std::plus<>>},
    Theorem{"difference", 2, 0, "(# - #)", corners<std::minus<>>},
    Theorem{"product", 2, 0, "(# * #)", corners<std::multiplies<>>},
    Theorem{"quotient", 2, 0, "(# / #)", quotient},
    Theorem{"power", 2, 0, "(# ^ #)", power},
    Theorem{"root_by_power", 2, 0, "root(#, #)", root},
    Theorem{"power_by_exp", 3, 0, "(# ^ #)", power_by_exp},
    Theorem{"root_by_exp", 3, 0, "root(#, #)", root_by_exp},
    Theorem{"pi_by_sin", 0, 1, "pi", pi},
    Theorem{"exp_taylor", 1, 1, "exp(#)", growing<exp_function>},
    Theorem{"sinh_taylor", 1, 1, "sinh(#)", growing<sinh_function>},
    Theorem{"cosh_taylor", 1, 1, "cosh(#)", growing<cosh_function, true>},
    Theorem{"tanh_taylor", 1, 1, "tanh(#)", growing<tanh_function>},
    Theorem{"sin_taylor", 1, 1, "sin(#)", wave<sin_function, cos_function, 1>},
    Theorem{"cos_taylor", 1, 1, "cos(#)", wave<cos_function, sin_function, -1>},
    Theorem{"tan_taylor", 1, 1, "tan(#)", tan},
    Theorem{"log_by_exp", 1, 1, "log(#)", log},
    Theorem{"asin_by_sin", 1, 1, "asin(#)", arc<sin_function, true>},
    Theorem{"acos_by_cos", 1, 1, "acos(#)", acos},
    Theorem{"atan_by_tan", 1, 1, "atan(#)", arc<tan_function, false>},
};

}  // namespace

Theorem const* find_theorem(std::string_view name) {
  auto const* const found = std::ranges::find(theorems, name, &Theorem::name);
  return found == theorems.end() ? nullptr : found;
}

}  // namespace zelk::verify
