#include "zelk/certify/prove.h"

#include <cassert>
#include <stdexcept>
#include <utility>
#include <vector>

#include "zelk/certify/internal/arity.h"
#include "zelk/certify/internal/effort.h"
#include "zelk/certify/internal/maker.h"

namespace zelk::certify {

namespace {

using real::Accuracy;
using real::Expression;
using real::Interval;
using real::Kind;
using Series = na::PowerSeriesApproximator;
using Function = Interval (Functions::*)(Interval const& x, Accuracy accuracy);

Proof prove_image(Functions& functions, Kind kind, std::vector<Interval> const& operands,
                  Interval const& image, Accuracy accuracy) {
  Maker maker(functions);
  std::vector<Part> parts;
  parts.reserve(operands.size());
  for (auto const& operand : operands) parts.push_back(maker.number(operand));
  maker.combined(kind, std::move(parts), image, accuracy.digits());
  std::vector<Kind> postfix(operands.size(), Kind::number);
  postfix.push_back(kind);
  auto certificate = maker.finish(Expression::from_postfix(std::move(postfix), operands));
  return {{image, true}, std::move(certificate)};
}

Proof prove_image(Functions& functions, Kind kind, Function function, Interval const& x,
                  Accuracy accuracy) {
  return prove_image(functions, kind, {x}, (functions.*function)(x, accuracy), accuracy);
}

/// That a function of a number has such a value: bounds that lie more than 2^-bits from it.
verify::Certificate certify_call(char const* theorem, Expression const& value, long bits,
                                 Interval const& bounds, bool is_negated = false) {
  Functions functions;
  Maker maker(functions);
  auto const x = maker.number(value.numbers()[0]);
  auto const answer = maker.claim(theorem, {bits + spare_bits}, {x}, is_negated ? -bounds : bounds);
  if (!is_negated) return maker.finish(value);
  maker.combined(Kind::negative, {answer}, bounds, 0);
  return maker.finish(-value);
}

/// The power of x that the sine's sum stopped at.
long degree_of_sin(Series& series, QNumber const& x, unsigned digits) {
  series.maclaurin_sin_bounds(x, digits);
  return series.sin_records().find({x, digits}).node->value.second.degree;
}

}  // namespace

Proof prove(Functions& functions, Expression const& expression, Accuracy accuracy,
            unsigned most_digits) {
  real::Steps steps;
  auto const answer = real::enclose(functions, expression, accuracy, most_digits, &steps);
  // The last step may be as wide as the answer: ends move outward only.
  steps.parts.back() = answer.bounds;
  Maker maker(functions);
  std::vector<Part> parts;
  auto image = steps.parts.begin();
  for (Kind const kind : expression.postfix()) {
    auto const first = parts.end() - static_cast<std::ptrdiff_t>(arity_of(kind));
    std::vector<Part> operands(std::make_move_iterator(first),
                               std::make_move_iterator(parts.end()));
    parts.erase(first, parts.end());
    if (operands.empty() && kind == Kind::number)
      parts.push_back(maker.number(*image));
    else
      parts.push_back(maker.combined(kind, std::move(operands), *image, steps.digits));
    ++image;
  }
  auto certificate = maker.finish(expression);
  return {answer, std::move(certificate)};
}

Proof prove_exp(Functions& functions, Interval const& x, Accuracy accuracy) {
  return prove_image(functions, Kind::exp, &Functions::exp, x, accuracy);
}
Proof prove_log(Functions& functions, Interval const& x, Accuracy accuracy) {
  return prove_image(functions, Kind::log, &Functions::log, x, accuracy);
}
Proof prove_root(Functions& functions, Interval const& x, unsigned long degree, Accuracy accuracy) {
  return prove_image(functions, Kind::root, {x, degree}, functions.root(x, degree, accuracy),
                     accuracy);
}
Proof prove_pow(Functions& functions, Interval const& x, QNumber const& exponent,
                Accuracy accuracy) {
  return prove_image(functions, Kind::power, {x, exponent}, functions.pow(x, exponent, accuracy),
                     accuracy);
}
Proof prove_sin(Functions& functions, Interval const& x, Accuracy accuracy) {
  return prove_image(functions, Kind::sin, &Functions::sin, x, accuracy);
}
Proof prove_cos(Functions& functions, Interval const& x, Accuracy accuracy) {
  return prove_image(functions, Kind::cos, &Functions::cos, x, accuracy);
}
Proof prove_tan(Functions& functions, Interval const& x, Accuracy accuracy) {
  return prove_image(functions, Kind::tan, &Functions::tan, x, accuracy);
}
Proof prove_asin(Functions& functions, Interval const& x, Accuracy accuracy) {
  return prove_image(functions, Kind::asin, &Functions::asin, x, accuracy);
}
Proof prove_acos(Functions& functions, Interval const& x, Accuracy accuracy) {
  return prove_image(functions, Kind::acos, &Functions::acos, x, accuracy);
}
Proof prove_atan(Functions& functions, Interval const& x, Accuracy accuracy) {
  return prove_image(functions, Kind::atan, &Functions::atan, x, accuracy);
}
Proof prove_sinh(Functions& functions, Interval const& x, Accuracy accuracy) {
  return prove_image(functions, Kind::sinh, &Functions::sinh, x, accuracy);
}
Proof prove_cosh(Functions& functions, Interval const& x, Accuracy accuracy) {
  return prove_image(functions, Kind::cosh, &Functions::cosh, x, accuracy);
}
Proof prove_tanh(Functions& functions, Interval const& x, Accuracy accuracy) {
  return prove_image(functions, Kind::tanh, &Functions::tanh, x, accuracy);
}
Proof prove_pi(Functions& functions, Accuracy accuracy) {
  return prove_image(functions, Kind::pi, std::vector<Interval>(), functions.pi(accuracy),
                     accuracy);
}

// The ends are farther from the value than a quarter of the first term that is left out, with its
// power of x: docs/mathematics.md, section 17.

verify::Certificate certify_exp(Series& series, QNumber const& x, unsigned digits,
                                Interval const& bounds) {
  series.maclaurin_exp_bounds(x, digits);
  long const degree = series.exp_records().find({x, digits}).node->value.second.degree;
  // Of a great value the relative accuracy counts.
  return certify_call("exp_taylor", real::exp(x),
                      smallness_of_term(x, degree + 1) + magnitude(bounds), bounds);
}

verify::Certificate certify_sin(Series& series, QNumber const& x, unsigned digits,
                                Interval const& bounds) {
  return certify_call("sin_taylor", real::sin(x),
                      smallness_of_term(x, degree_of_sin(series, x, digits) + 1), bounds);
}

verify::Certificate certify_negative_sin(Series& series, QNumber const& x, unsigned digits,
                                         Interval const& bounds) {
  return certify_call("sin_taylor", real::sin(x),
                      smallness_of_term(x, degree_of_sin(series, x, digits) + 1), bounds, true);
}

verify::Certificate certify_cos(Series& series, QNumber const& x, unsigned digits,
                                Interval const& bounds) {
  for (unsigned asked = digits;; asked += 1 + asked / 8) {
    auto const [lower, upper] = series.maclaurin_sin_der_bounds(x, asked);
    Interval const found(lower, upper);
    if (!intersection(bounds, found))
      throw std::invalid_argument("the cosine is not within its bounds");
    if (!bounds.contains(found)) continue;
    return certify_call("cos_taylor", real::cos(x),
                        smallness_of_term(x, degree_of_sin(series, x, asked)), bounds);
  }
}

verify::Certificate certify_pi(Interval const& bounds) {
  Functions functions;
  Maker maker(functions);
  // The ends are farther from pi than 2^-20 of their distance.
  long const bits = std::max(0L, -magnitude(bounds.width()));
  maker.claim("pi_by_sin", {bits + spare_bits}, {}, bounds);
  return maker.finish(Expression::pi());
}

}  // namespace zelk::certify
