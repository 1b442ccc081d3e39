#include "zelk/real/elementary_functions.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "zelk/approx/simplest.h"
#include "zelk/numbers/functions.h"
#include "zelk/numbers/integer.h"
#include "zelk/real/errors.h"
#include "zelk/real/internal/composed_functions.h"
#include "zelk/real/internal/constants.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/limit.h"
#include "zelk/real/internal/point_functions.h"

namespace zelk::real {

namespace {

// Of the distance that an end may have from the true value an enclosure takes 2^-spare_bits, and
// 9/20 on each side are left for the search of a short end: 2 * 9/20 + 1/16 < 1.
constexpr long spare_bits = 4;

/// What an answer may cost, and how near it has to be.
class Goal {
 public:
  enum class Way { direct, by_chord };

  Goal(Accuracy wanted, double max_bits, Way function_way = Way::direct)
      : accuracy(wanted), most_bits(max_bits), way(function_way) {
    require_room(static_cast<double>(tolerance_bits()));
  }

  /// The least bits with 2^-bits < 10^-digits / 2^spare_bits, nearly. log2 10 < 3.32193.
  long tolerance_bits() const {
    return static_cast<long>(accuracy.digits() * 332193UL / 100000UL) + 1 + spare_bits;
  }

  /// 9/20 of 10^-digits.
  QNumber slack() const {
    Integer n(9UL), d;
    mpz_ui_pow_ui(d, 10, accuracy.digits());
    mpz_mul_ui(d, d, 20);
    return QNumber::from_lowest_terms({n, d});
  }

  bool is_relative() const { return accuracy.is_relative(); }

  void require_room(double bits) const {
    real::require_room(bits, most_bits,
                       way == Way::direct ? room_on_the_way : room_for_chords(bits));
  }

 private:
  Accuracy accuracy;
  double most_bits;
  Way way;
};

/// A value of a function, and how far an answer's end may lie outside.
struct Value {
  Interval bounds;
  QNumber slack;
};

/// What is known exactly is given exactly.
Value exactly(QNumber value) { return {std::move(value), {}}; }

/// An end that is not the value itself keeps away from it: so the length of a proof of each answer
/// is known beforehand. What shows the sign of a value has no nearer end.
Interval kept_apart(Interval const& bounds, long bits) {
  long const places = bits + answer_margin_bits;
  auto const beyond = [places](QNumber const& end, long direction) {
    if (end.is_zero()) return end;
    auto const denominator = end.denominator();
    auto const own_places = static_cast<long>(mpz_sizeinbase(denominator, 2)) - 1;
    if (own_places > places || mpz_popcount(denominator) != 1)
      return end + direction * zelk::pow(2, -places);
    Integer n;
    shift(n, end.numerator(), places - own_places);
    (direction > 0 ? mpz_add_ui : mpz_sub_ui)(n, n, 1);
    return dyadic(n, places);
  };
  return Interval(Interval::Ordered{beyond(bounds.lower(), -1), beyond(bounds.upper(), 1)});
}

/// The value that `at` encloses to any number of bits. `exponent` may be any guess of its binary
/// one: a good one saves work, and a great one is needed where the value is great.
template <class At>
Value enclose(Goal const& goal, At const& at, long exponent = 0) {
  long bits = goal.tolerance_bits();
  if (!goal.is_relative()) {
    goal.require_room(static_cast<double>(bits) + static_cast<double>(exponent));
    auto bounds = at(bits);
    if (bounds.is_point()) return {std::move(bounds), {}};
    return {kept_apart(bounds, bits), goal.slack()};
  }
  // Beyond 1 the leading bits are the value's own, below it they follow its zeros.
  goal.require_room(static_cast<double>(exponent > 0 ? std::max(bits, exponent) : bits - exponent));
  for (long more = bits + 64, needed = bits - exponent;; more *= 2) {
    auto bounds = at(needed);
    if (bounds.is_point()) return {std::move(bounds), {}};
    if (bounds.sign() == 0) {  // more bits than the value has zeros
      needed += more;
      goal.require_room(static_cast<double>(needed));
      continue;
    }
    auto const& nearest = bounds.sign() > 0 ? bounds.lower() : bounds.upper();
    long const enough = bits - (magnitude(nearest) - 2);
    if (needed >= enough) {
      auto const slack = abs(nearest) * goal.slack();
      return {kept_apart(bounds, enough), slack};
    }
    needed = enough;
  }
}

/// A value that is known to lie in `range`: its ends do too.
Value within(Interval const& range, Value value) {
  value.bounds = *intersection(value.bounds, range);
  return value;
}

/// The interval from the least value to the greatest, with short ends.
Interval shorten(Value const& least, Value const& greatest) {
  auto [lower, upper] =
      na::shortened({least.bounds.lower(), greatest.bounds.upper()}, least.slack, greatest.slack);
  return {std::move(lower), std::move(upper)};
}

/// The image of x under a function that grows, or falls, on all of it.
template <class ValueAt>
Interval monotone_image(Interval const& x, bool grows, ValueAt const& value_at) {
  auto const at_lower = value_at(x.lower());
  if (x.is_point()) return shorten(at_lower, at_lower);
  auto const at_upper = value_at(x.upper());
  return grows ? shorten(at_lower, at_upper) : shorten(at_upper, at_lower);
}

/// What |x| takes: all that an even function depends on.
Interval magnitudes(Interval const& x) {
  auto const [nearest, farthest] = std::minmax({abs(x.lower()), abs(x.upper())});
  return {x.contains(0) ? 0 : nearest, farthest};
}

Value const& lesser(Value const& a, Value const& b) {
  return b.bounds.lower() < a.bounds.lower() ? b : a;
}

Value const& greater(Value const& a, Value const& b) {
  return a.bounds.upper() < b.bounds.upper() ? b : a;
}

/// Which multiples of pi/2 lie in x, above its lower end: those from `first` to `last`.
class QuarterTurns {
 public:
  QuarterTurns(Interval const& x, Constants& constants)
      : first(quadrant_of(x.lower(), constants) + 1), last(quadrant_of(x.upper(), constants)) {}

  /// Whether one of them is `remainder` modulo `modulus`.
  bool include(long remainder, long modulus) const {
    auto const skipped = first - remainder;
    auto const next = ceil(skipped / modulus) * modulus + remainder;
    return !(last < next);
  }

 private:
  QNumber first;
  QNumber last;
};

/// The image of x under the sine, or the cosine, which is 1 at the multiples 4k + top of pi/2.
template <class ValueAt>
Interval wave_image(Interval const& x, long top, Constants& constants, ValueAt const& value_at) {
  auto const at_lower = value_at(x.lower());
  if (x.is_point()) return shorten(at_lower, at_lower);
  QuarterTurns const turns(x, constants);
  bool const has_top = turns.include(top, 4);
  bool const has_bottom = turns.include(top + 2, 4);
  if (has_top && has_bottom) return {-1, 1};
  auto const at_upper = value_at(x.upper());
  return shorten(has_bottom ? exactly(-1) : lesser(at_lower, at_upper),
                 has_top ? exactly(1) : greater(at_lower, at_upper));
}

[[noreturn]] void refuse(char const* what) { throw Undefined(what); }

}  // namespace

ElementaryFunctions::ElementaryFunctions(double max_bits)
    : most_bits(std::min(max_bits, greatest_max_bits)), constants(std::make_unique<Constants>()) {}

ElementaryFunctions::~ElementaryFunctions() = default;

Interval ElementaryFunctions::exp(Interval const& x, Accuracy accuracy) {
  Goal const goal(accuracy, most_bits);
  return monotone_image(x, true, [&](QNumber const& point) {
    auto const at = [&](long bits) { return exp_at(point, bits, *constants); };
    return enclose(goal, at, exponent_of_exp(point));
  });
}

Interval ElementaryFunctions::log(Interval const& x, Accuracy accuracy) {
  if (x.lower().sign() <= 0) refuse("log of what is not positive");
  Goal const goal(accuracy, most_bits);
  return monotone_image(x, true, [&](QNumber const& point) {
    return enclose(goal, [&](long bits) { return log_at(point, bits, *constants); });
  });
}

Interval ElementaryFunctions::root(Interval const& x, unsigned long degree, Accuracy accuracy) {
  if (degree == 0) refuse("root of degree 0");
  if (degree % 2 == 0 && x.lower().sign() < 0) refuse("even root of what is negative");
  Goal const goal(accuracy, most_bits);
  return monotone_image(x, true, [&](QNumber const& point) {
    if (point.is_zero()) return exactly(0);
    auto const at = [&](long bits) {
      auto const magnitude = root_at(abs(point), degree, bits, *constants);
      return point.sign() < 0 ? -magnitude : magnitude;
    };
    return enclose(goal, at, magnitude(point) / static_cast<long>(std::min(degree, 1UL << 62)));
  });
}

Interval ElementaryFunctions::sin(Interval const& x, Accuracy accuracy) {
  Goal const goal(accuracy, most_bits, Goal::Way::by_chord);
  return wave_image(x, 1, *constants, [&](QNumber const& point) {
    return within({-1, 1},
                  enclose(goal, [&](long bits) { return sin_at(point, bits, *constants); }));
  });
}

Interval ElementaryFunctions::cos(Interval const& x, Accuracy accuracy) {
  Goal const goal(accuracy, most_bits, Goal::Way::by_chord);
  return wave_image(x, 0, *constants, [&](QNumber const& point) {
    return within({-1, 1},
                  enclose(goal, [&](long bits) { return cos_at(point, bits, *constants); }));
  });
}

Interval ElementaryFunctions::tan(Interval const& x, Accuracy accuracy) {
  Goal const goal(accuracy, most_bits, Goal::Way::by_chord);
  if (!x.is_point() && QuarterTurns(x, *constants).include(1, 2))
    refuse("tan of an interval that holds a pole");
  return monotone_image(x, true, [&](QNumber const& point) {
    return enclose(goal, [&](long bits) { return tan_at(point, bits, *constants); });
  });
}

Interval ElementaryFunctions::asin(Interval const& x, Accuracy accuracy) {
  if (!Interval(-1, 1).contains(x)) refuse("asin of what lies beyond -1 and 1");
  Goal const goal(accuracy, most_bits, Goal::Way::by_chord);
  return monotone_image(x, true, [&](QNumber const& point) {
    return enclose(goal, [&](long bits) { return asin_at(point, bits, *constants); });
  });
}

Interval ElementaryFunctions::acos(Interval const& x, Accuracy accuracy) {
  if (!Interval(-1, 1).contains(x)) refuse("acos of what lies beyond -1 and 1");
  Goal const goal(accuracy, most_bits, Goal::Way::by_chord);
  return monotone_image(x, false, [&](QNumber const& point) {
    return enclose(goal, [&](long bits) { return acos_at(point, bits, *constants); });
  });
}

Interval ElementaryFunctions::atan(Interval const& x, Accuracy accuracy) {
  Goal const goal(accuracy, most_bits, Goal::Way::by_chord);
  return monotone_image(x, true, [&](QNumber const& point) {
    return enclose(goal, [&](long bits) { return atan_at(point, bits, *constants); });
  });
}

Interval ElementaryFunctions::sinh(Interval const& x, Accuracy accuracy) {
  Goal const goal(accuracy, most_bits);
  return monotone_image(x, true, [&](QNumber const& point) {
    auto const at = [&](long bits) { return sinh_at(point, bits, *constants); };
    return enclose(goal, at, exponent_of_exp(abs(point)));
  });
}

Interval ElementaryFunctions::cosh(Interval const& x, Accuracy accuracy) {
  Goal const goal(accuracy, most_bits);
  return monotone_image(magnitudes(x), true, [&](QNumber const& point) {
    auto const at = [&](long bits) { return cosh_at(point, bits, *constants); };
    auto const value = enclose(goal, at, exponent_of_exp(point));
    return within({1, value.bounds.upper()}, value);
  });
}

Interval ElementaryFunctions::tanh(Interval const& x, Accuracy accuracy) {
  Goal const goal(accuracy, most_bits);
  return monotone_image(x, true, [&](QNumber const& point) {
    return within({-1, 1},
                  enclose(goal, [&](long bits) { return tanh_at(point, bits, *constants); }));
  });
}

Interval ElementaryFunctions::power(Interval const& x, QNumber const& exponent, Accuracy accuracy) {
  if (exponent.is_zero()) return 1;
  bool const is_negative = exponent.sign() < 0;
  bool const is_odd = mpz_odd_p(exponent.numerator().get()) != 0;
  if (!exponent.is_integer() && x.lower().sign() < 0)
    refuse("fractional power of what is negative");
  if (is_negative && x.contains(0)) throw DivisionByZero("negative power of 0");
  Goal const goal(accuracy, most_bits);
  auto const value_at = [&](QNumber const& point) {
    if (point.is_zero()) return exactly(0);
    auto const size = abs(point);
    auto const at = [&](long bits) {
      auto const power = pow_at(size, exponent, bits, *constants);
      return point.sign() < 0 && is_odd ? -power : power;
    };
    return enclose(goal, at, exponent_of_pow(size, exponent, *constants));
  };
  return monotone_image(is_odd ? x : magnitudes(x), !is_negative, value_at);
}

Interval ElementaryFunctions::pow(Interval const& x, Interval const& y, Accuracy accuracy) {
  if (y.is_point()) return power(x, y.lower(), accuracy);
  if (x.lower().sign() <= 0) refuse("power of what is not positive");
  Goal const goal(accuracy, most_bits);
  auto const value_at = [&](QNumber const& base, QNumber const& exponent) {
    auto const at = [&](long bits) { return pow_at(base, exponent, bits, *constants); };
    return enclose(goal, at, exponent_of_pow(base, exponent, *constants));
  };
  // y log x is bilinear, so that it is least and greatest at the corners.
  Value const corners[] = {value_at(x.lower(), y.lower()), value_at(x.lower(), y.upper()),
                           value_at(x.upper(), y.lower()), value_at(x.upper(), y.upper())};
  return shorten(lesser(lesser(corners[0], corners[1]), lesser(corners[2], corners[3])),
                 greater(greater(corners[0], corners[1]), greater(corners[2], corners[3])));
}

Interval ElementaryFunctions::pi(Accuracy accuracy) {
  Goal const goal(accuracy, most_bits);
  auto const value = enclose(goal, [&](long bits) { return pi_at(bits, *constants); });
  return shorten(value, value);
}

}  // namespace zelk::real
