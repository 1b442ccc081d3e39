#include <iostream>

#include "zelk/convert/text.h"
#include "zelk/zelk.h"

int main() {
  zelk::na::RationalApproximator rational;
  zelk::na::PowerSeriesApproximator series(rational);

  zelk::QNumber const year(36524219, 100000);  // 365.24219 days
  std::cout << zelk::convert::to_string(rational.approx(year, 3, 1)) << " days at most\n";

  auto const [low, high] = series.maclaurin_exp_bounds({-1, 2}, 6);  // e^(-1/2) to six digits
  std::cout << zelk::convert::to_string(low) << " < " << zelk::convert::to_string(high) << '\n';
}
