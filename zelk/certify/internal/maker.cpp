#include "zelk/certify/internal/maker.h"

#include <algorithm>
#include <cassert>
#include <stdexcept>
#include <utility>

#include "zelk/certify/internal/effort.h"
#include "zelk/certify/prove.h"
#include "zelk/certify/statement.h"
#include "zelk/certify/write.h"
#include "zelk/numbers/functions.h"
#include "zelk/verify/read.h"
#include "zelk/verify/verify.h"

namespace zelk::certify {

namespace {

using real::Interval;
using real::Kind;

[[maybe_unused]] bool is_accepted(verify::Certificate const& certificate) {
  return verify::verify(verify::read_certificate(to_json_lines(certificate))).is_accepted;
}

}  // namespace

Part Maker::claim(std::string theorem, std::vector<long> const& arguments,
                  std::vector<Part> const& premises, Interval const& bounds) {
  verify::Claim made{std::move(theorem), {}, {}, bounds.lower(), bounds.upper()};
  made.arguments.assign(arguments.begin(), arguments.end());
  for (auto const& premise : premises) made.premises.push_back(premise.number);
  certificate.claims.push_back(std::move(made));
  return {certificate.claims.size(), bounds};
}

Part Maker::number(Interval const& x) { return claim("number", {}, {}, x); }

/// Of numbers that are short for that by their powers, otherwise by the logarithm.
Part Maker::power(Kind kind, Part const& x, Part const& y, Interval const& image, unsigned digits) {
  bool const is_root = kind == Kind::root;
  auto const name = std::string(is_root ? "root" : "power");
  auto const factor = is_root ? Interval(y.bounds.lower().inv()) : y.bounds;
  if (factor.is_point() && is_short_power(x.bounds, factor.lower(), image))
    return claim(is_root ? "root_by_power" : name, {}, {x, y}, image);
  if (x.bounds.lower().sign() <= 0)
    throw Unprovable("no certificate of so great a power of what is not positive");
  // What of the logarithm is unknown is multiplied by the exponent and by the value. log10 2 <
  // 0.30103.
  long const bits = accuracy_of(image, digits) + magnitude(image) + magnitude(factor);
  auto const log_digits = static_cast<unsigned>(bits * 30103 / 100000 + 1);
  auto const log = combined(Kind::log, {x}, functions.log(x.bounds, log_digits), log_digits);
  auto const product = is_root ? combined(Kind::quotient, {log, y}, log.bounds * factor, log_digits)
                               : combined(Kind::product, {y, log}, factor * log.bounds, log_digits);
  auto const value = combined(Kind::exp, {product}, image, digits);
  return claim(name + "_by_exp", {}, {x, y, value}, image);
}

Part Maker::combined(Kind kind, std::vector<Part> operands, Interval const& image,
                     unsigned digits) {
  static Part const none{0, 0};
  auto const& x = operands.empty() ? none : operands.front();
  auto const& y = operands.empty() ? none : operands.back();
  long const accuracy = accuracy_of(image, digits);
  auto const call = [&](std::string const& name, char const* way, long extra_bits = 0) {
    return claim(name + way, {accuracy + extra_bits}, {x}, image);
  };
  switch (kind) {
    case Kind::number:
      return number(image);
    case Kind::variable:
      break;
    case Kind::pi:
      return claim("pi_by_sin", {accuracy}, {}, image);
    case Kind::e:
      return combined(Kind::exp, {number(1)}, image, digits);
    case Kind::negative:
      return claim("negative", {}, {x}, image);
    case Kind::sum:
      return claim("sum", {}, {x, y}, image);
    case Kind::difference:
      return claim("difference", {}, {x, y}, image);
    case Kind::product:
      return claim("product", {}, {x, y}, image);
    case Kind::quotient:
      return claim("quotient", {}, {x, y}, image);
    case Kind::power:
    case Kind::root:
      return power(kind, x, y, image, digits);
    case Kind::sqrt:
      return power(Kind::root, x, number(2), image, digits);
    case Kind::exp:
      return call("exp", "_taylor", magnitude(image));
    case Kind::log: {
      // Less than the logarithm itself tells nothing of an exponential.
      auto const size = std::max(-image.lower(), image.upper());
      long const greatest = mpz_get_si(ceil(size).numerator());
      return call("log", "_by_exp", std::max(0L, greatest - accuracy) + spare_bits);
    }
    case Kind::sin:
      return call("sin", "_taylor");
    case Kind::cos:
      return call("cos", "_taylor");
    case Kind::tan:
      return call("tan", "_taylor", 2 * magnitude(image));
    case Kind::atan:
      return call("atan", "_by_tan");
    case Kind::asin:
      return call("asin", "_by_sin", flatness(x.bounds, accuracy));
    case Kind::acos:
      return call("acos", "_by_cos", flatness(x.bounds, accuracy));
    case Kind::sinh:
      return call("sinh", "_taylor", magnitude(image));
    case Kind::cosh:
      return call("cosh", "_taylor", magnitude(image));
    case Kind::tanh:
      return call("tanh", "_taylor");
  }
  throw std::invalid_argument("the variable x has no value");
}

verify::Certificate Maker::finish(real::Expression const& expression) {
  certificate.statement = statement_of(expression);
  auto const verdict = verify::verify_limits(certificate);
  if (!verdict.is_accepted)
    throw Unprovable("no certificate that checkers accept: claim " + std::to_string(verdict.claim) +
                     ": " + verdict.reason);
  assert(is_accepted(certificate));
  return std::move(certificate);
}

}  // namespace zelk::certify
