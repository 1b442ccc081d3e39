// Signs that no rounding can get wrong: an enclosure is refined until it lies on one side of zero.

#include <iostream>

#include "zelk/zelk.h"

namespace {

using zelk::QNumber;
using Bounds = zelk::na::PowerSeriesApproximator::Bounds;

/// Prints the sign of the number that `enclose` encloses to about as many digits as it is told.
/// Requires: that number is not 0, which no enclosure could ever tell.
template <class Enclose>
void show_sign(char const* name, Enclose enclose) {
  for (unsigned digits = 1;; ++digits) {
    auto const [low, high] = enclose(digits);
    if (low.sign() <= 0 && high.sign() >= 0) continue;
    std::cout << name << (low.sign() > 0 ? " > 0" : " < 0") << "   digits: " << digits << '\n';
    return;
  }
}

QNumber fourth_and_fifth_power(QNumber const& q) {
  QNumber const square = q * q;
  return square * square * (q + 1);
}

}  // namespace

int main() {
  zelk::na::RationalApproximator rational;
  zelk::na::PowerSeriesApproximator series(rational);

  show_sign("e^pi - pi - 20", [&](unsigned digits) {
    auto const [low, high] = series.machin_pi_bounds(digits);
    return Bounds(series.maclaurin_exp_bounds(low, digits).first - high - 20,
                  series.maclaurin_exp_bounds(high, digits).second - low - 20);
  });
  show_sign("pi^4 + pi^5 - e^6", [&](unsigned digits) {
    auto const [low, high] = series.machin_pi_bounds(digits);
    auto const [e_low, e_high] = series.maclaurin_exp_bounds(6, digits);
    return Bounds(fourth_and_fifth_power(low) - e_high, fourth_and_fifth_power(high) - e_low);
  });
  show_sign("sin(355/113)", [&](unsigned digits) {
    return series.maclaurin_sin_bounds({355, 113}, digits);
  });
}
