#include "zelk/certify/prove.h"

#include <cassert>
#include <utility>
#include <vector>

#include "zelk/certify/internal/arity.h"
#include "zelk/certify/internal/effort.h"
#include "zelk/certify/internal/maker.h"
#include "zelk/convert/text.h"

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
  auto const answer = maker.combined(kind, std::move(parts), image, accuracy.digits());
  return {{image, true}, maker.finish(answer)};
}

Proof prove_image(Functions& functions, Kind kind, Function function, Interval const& x,
                  Accuracy accuracy) {
  return prove_image(functions, kind, {x}, (functions.*function)(x, accuracy), accuracy);
}

/// That a sum of the series at x, up to a term, has such a value.
verify::Certificate certify_sum(char const* name, QNumber const& x, long index,
                                Interval const& bounds) {
  Functions functions;
  Maker maker(functions);
  auto const point = maker.number(x);
  auto text = std::string(name) + "(" + point.text + ")";
  return maker.finish(
      maker.claim(std::string(name) + "_partial_sum", {index}, {point}, std::move(text), bounds));
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
  return {answer, maker.finish(parts.back())};
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

verify::Certificate certify_exp(Series& series, QNumber const& x, unsigned digits,
                                Interval const& bounds) {
  series.maclaurin_exp_bounds(x, digits);
  return certify_sum("exp", x, series.exp_records().find({x, digits}).node->value.second.degree,
                     bounds);
}

verify::Certificate certify_sin(Series& series, QNumber const& x, unsigned digits,
                                Interval const& bounds) {
  series.maclaurin_sin_bounds(x, digits);
  return certify_sum("sin", x, series.sin_records().find({x, digits}).node->value.second.degree + 1,
                     bounds);
}

verify::Certificate certify_cos(Series& series, QNumber const& x, unsigned digits,
                                Interval const& bounds) {
  for (unsigned asked = digits;; asked += 1 + asked / 8) {
    auto const [lower, upper] = series.maclaurin_sin_der_bounds(x, asked);
    if (!bounds.contains(Interval(lower, upper))) continue;
    long const degree = series.sin_records().find({x, asked}).node->value.second.degree;
    return certify_sum("cos", x, degree == 0 ? 1 : degree, bounds);
  }
}

verify::Certificate certify_pi(Interval const& bounds) {
  Functions functions;
  Maker maker(functions);
  // Its own width says how far the ends are; the spare bits make up for one that lies nearer.
  auto const effort = effort_of_pi(64 - magnitude(bounds.width()));
  return maker.finish(maker.claim("pi_machin", {effort.terms, effort.bits}, {}, "pi", bounds));
}

}  // namespace zelk::certify
