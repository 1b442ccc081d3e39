#include "zelk/real/lines.h"

#include <algorithm>
#include <stdexcept>

namespace zelk::real {

namespace {

/// The line of that slope through (x, y).
Line through(QNumber const& x, QNumber const& y, QNumber const& slope) {
  return {slope, y - slope * x};
}

/// The line through (x.lower(), from) and (x.upper(), to).
Line chord(Interval const& x, QNumber const& from, QNumber const& to) {
  return through(x.lower(), from, x.is_point() ? QNumber() : (to - from) / x.width());
}

Line operator-(Line const& line) { return {-line.slope, -line.intercept}; }

}  // namespace

Line tangent_below_exp(ElementaryFunctions& functions, QNumber const& x0, Accuracy accuracy) {
  auto const value = functions.exp(x0, accuracy).lower();
  return through(x0, value, value);
}

Line chord_above_exp(ElementaryFunctions& functions, Interval const& piece, Accuracy accuracy) {
  return chord(piece, functions.exp(piece.lower(), accuracy).upper(),
               functions.exp(piece.upper(), accuracy).upper());
}

LinePair lines_around_sin(ElementaryFunctions& functions, Interval const& piece,
                          QNumber const& touch, Accuracy accuracy) {
  if (!piece.contains(touch)) throw std::domain_error("the tangent touches beyond the piece");
  // The ends have the signs of the values: they are off by less than the values are.
  auto const image = functions.sin(piece, Accuracy::relative(1));
  bool const is_concave = image.lower().sign() >= 0;
  if (!is_concave && image.upper().sign() > 0)
    throw std::domain_error("the sine's curvature changes its sign within the piece");

  // Where it is convex its mirror image is concave.
  auto const concave = [&](QNumber const& x) {
    auto const value = functions.sin(x, accuracy);
    return is_concave ? value : -value;
  };
  auto const below = chord(piece, concave(piece.lower()).lower(), concave(piece.upper()).lower());

  auto const cos = functions.cos(touch, accuracy);
  auto const& slope = is_concave ? cos.lower() : cos.upper();
  auto const reach = std::max(touch - piece.lower(), piece.upper() - touch);
  auto const height = concave(touch).upper() + cos.width() * reach;
  auto const above = through(touch, height, is_concave ? slope : -slope);

  if (is_concave) return {below, above};
  return {-above, -below};
}

}  // namespace zelk::real
