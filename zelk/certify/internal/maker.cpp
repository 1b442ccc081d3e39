#include "zelk/certify/internal/maker.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "zelk/certify/internal/effort.h"
#include "zelk/convert/text.h"
#include "zelk/numbers/functions.h"

namespace zelk::certify {

namespace {

using convert::to_string;
using real::Interval;
using real::Kind;

std::vector<QNumber> numbers(Effort const& effort) {
  return {effort.halvings, effort.terms, effort.bits};
}

std::string infix(Part const& a, char sign, Part const& b) {
  return "(" + a.text + " " + sign + " " + b.text + ")";
}

QNumber magnitude_below(QNumber const& exponent) {
  constexpr long beyond = 1L << 31;
  if (!(abs(numerator(exponent)) < beyond) || !(denominator(exponent) < beyond))
    throw std::length_error("no certificate of a power with so long an exponent");
  return exponent;
}

/// The multiple of pi/2 at or below x, if pi is known well enough.
std::optional<QNumber> turns_of(QNumber const& x, Interval const& pi) {
  auto const [least, greatest] = std::minmax({2 * x / pi.lower(), 2 * x / pi.upper()});
  auto turns = floor(least);
  if (!(floor(greatest) == turns)) return {};
  return turns;
}

}  // namespace

Part Maker::claim(std::string theorem, std::vector<QNumber> arguments,
                  std::vector<Part> const& premises, std::string text, Interval const& bounds) {
  verify::Claim made{std::move(theorem), std::move(arguments), {}, bounds.lower(), bounds.upper()};
  for (auto const& premise : premises) made.premises.push_back(premise.claim);
  certificate.claims.push_back(std::move(made));
  return {certificate.claims.size(), std::move(text), bounds};
}

Part Maker::number(Interval const& x) {
  auto text = to_string(x.lower());
  if (!x.is_point())
    text = "[" + text + ", " + to_string(x.upper()) + "]";
  else if (!x.lower().is_integer() || x.lower().sign() < 0)
    text = "(" + text + ")";
  return claim("number", {}, {}, std::move(text), x);
}

Part Maker::pi(Interval const& bounds, unsigned digits) {
  auto const effort = effort_of_pi(accuracy_of(bounds, digits));
  return claim("pi_machin", {effort.terms, effort.bits}, {}, "pi", bounds);
}

Part Maker::call(std::string name, std::string theorem, std::vector<QNumber> arguments,
                 std::vector<Part> const& premises, Interval const& image) {
  auto text = std::move(name) + "(" + premises[0].text + ")";
  return claim(std::move(theorem), std::move(arguments), premises, std::move(text), image);
}

/// One claim serves all that need no more.
Part const& Maker::pi_of(long accuracy) {
  if (!known_pi || pi_accuracy < accuracy) {
    // log10 2 < 0.30103.
    auto const digits = static_cast<unsigned>(accuracy * 30103 / 100000 + 1);
    known_pi = pi(functions.pi(digits), digits);
    pi_accuracy = accuracy;
  }
  return *known_pi;
}

Part Maker::turned(std::string const& name, Part const& x, Interval const& image, long accuracy) {
  Interval const coarse(QNumber(333, 106), QNumber(355, 113));
  auto first = turns_of(x.bounds.lower(), coarse), last = turns_of(x.bounds.upper(), coarse);
  if (first == QNumber(0) && last == QNumber(0)) {
    // Without turns, pi only has to show that there are none.
    if (!known_pi) known_pi = pi(coarse, 0);
  } else {
    for (long needed = accuracy + magnitude(x.bounds) + 8;; needed *= 2) {
      auto const& pi = pi_of(needed).bounds;
      first = turns_of(x.bounds.lower(), pi);
      last = turns_of(x.bounds.upper(), pi);
      if (first && last) break;
    }
  }
  auto const effort = effort_of_turn(accuracy);
  return call(name, name + "_taylor", {*first, *last, effort.halvings, effort.terms, effort.bits},
              {x, *known_pi}, image);
}

Part Maker::power(Part const& x, Part const& exponent, Interval const& image, unsigned digits) {
  if (exponent.bounds.is_point()) {
    auto const& n = exponent.bounds.lower();
    long const bits =
        bits_of_power(x.bounds, magnitude_below(n), image, accuracy_of(image, digits));
    return claim("power", {std::max(bits, 8L)}, {x, exponent}, infix(x, '^', exponent), image);
  }
  // As it was found: by a logarithm of so many digits.
  auto const logarithm = combined(Kind::log, {x}, functions.log(x.bounds, digits), digits);
  auto const product =
      combined(Kind::product, {exponent, logarithm}, exponent.bounds * logarithm.bounds, digits);
  auto const value = combined(Kind::exp, {product}, image, digits);
  return claim("power_by_exp", {}, {x, exponent, value}, infix(x, '^', exponent), image);
}

Part Maker::combined(Kind kind, std::vector<Part> operands, Interval const& image,
                     unsigned digits) {
  static Part const none{0, "", 0};
  auto const& x = operands.empty() ? none : operands.front();
  auto const& y = operands.empty() ? none : operands.back();
  long const accuracy = accuracy_of(image, digits);
  auto const call_by_exp = [&](std::string const& name, long bits) {
    return call(name, name + "_taylor",
                numbers(effort_of_exp(magnitude(x.bounds) + 1, accuracy + bits)), {x}, image);
  };
  auto const call_by_atan = [&](std::string const& name) {
    return call(name, name + "_series", numbers(effort_of_atan(accuracy + 2)), {x}, image);
  };
  auto const root_of = [&](Part const& degree) {
    long const bits =
        bits_of_power(x.bounds, magnitude_below(degree.bounds.lower()).inv(), image, accuracy);
    return claim("root_by_power", {std::max(bits, 8L)}, {x, degree},
                 "root(" + x.text + ", " + degree.text + ")", image);
  };
  switch (kind) {
    case Kind::number:
      return number(image);
    case Kind::variable:
      break;
    case Kind::pi:
      return pi(image, digits);
    case Kind::e:
      return combined(Kind::exp, {number(1)}, image, digits);
    case Kind::negative:
      return claim("negative", {}, {x}, "(-" + x.text + ")", image);
    case Kind::sum:
      return claim("sum", {}, {x, y}, infix(x, '+', y), image);
    case Kind::difference:
      return claim("difference", {}, {x, y}, infix(x, '-', y), image);
    case Kind::product:
      return claim("product", {}, {x, y}, infix(x, '*', y), image);
    case Kind::quotient:
      return claim("quotient", {}, {x, y}, infix(x, '/', y), image);
    case Kind::power:
      return power(x, y, image, digits);
    case Kind::exp:
      return call_by_exp("exp", magnitude(image));
    case Kind::log:
      return call("log", "log_by_exp", numbers(effort_of_exp(magnitude(image), accuracy + 4)), {x},
                  image);
    case Kind::root:
      return root_of(y);
    case Kind::sqrt:
      return root_of(number(2));
    case Kind::sin:
      return turned("sin", x, image, accuracy);
    case Kind::cos:
      return turned("cos", x, image, accuracy);
    case Kind::tan:
      return turned("tan", x, image, accuracy + 2 * magnitude(image) + 8);
    case Kind::atan:
      return call_by_atan("atan");
    case Kind::asin:
      return call_by_atan("asin");
    case Kind::acos:
      return call_by_atan("acos");
    case Kind::sinh:
      return call_by_exp("sinh", magnitude(image) + 2);
    case Kind::cosh:
      return call_by_exp("cosh", magnitude(image) + 2);
    case Kind::tanh:
      return call_by_exp("tanh", 4);
  }
  throw std::invalid_argument("the variable x has no value");
}

verify::Certificate Maker::finish(Part const& answer) {
  certificate.statement = answer.text;
  return std::move(certificate);
}

}  // namespace zelk::certify
