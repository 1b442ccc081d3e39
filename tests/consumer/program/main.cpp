// A program of another project: one thing of each part of the library, small and big.

#include <iostream>

#include "zelk/convert/text.h"
#include "zelk/zelk.h"

int main() {
  using zelk::convert::parse_rational;
  zelk::na::RationalApproximator rational;
  zelk::na::PowerSeriesApproximator series(rational);

  zelk::QNumber const year = parse_rational("365.24219");
  std::cout << zelk::convert::to_string(rational.approx(year, 3, 1)) << '\n';

  auto const [low, high] = series.machin_pi_bounds(30);
  zelk::QNumber const pi = parse_rational("3.14159265358979323846264338327950288419716939937511");
  zelk::QNumber const tolerance = parse_rational("1e-30");
  std::cout << std::boolalpha << (low < pi && pi < high && !(tolerance < high - low)) << '\n';

  try {
    parse_rational("1/0");
  } catch (zelk::convert::ParseError const& error) {
    std::cout << error.column() << '\n';
  }
}
