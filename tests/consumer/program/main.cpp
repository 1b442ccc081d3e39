// A program of another project: one thing of each part of the library, small and big.

#include <iostream>
#include <sstream>

#include "zelk/convert/decimal.h"
#include "zelk/convert/gmp.h"
#include "zelk/convert/machine.h"
#include "zelk/convert/stream.h"
#include "zelk/convert/text.h"
#include "zelk/real/elementary_functions.h"
#include "zelk/zelk.h"

int main() {
  using namespace zelk::convert;
  zelk::na::RationalApproximator rational;
  zelk::na::PowerSeriesApproximator series(rational);

  zelk::QNumber year;
  std::istringstream("365.24219") >> year;
  std::cout << rational.approx(year, 3, 1) << '\n';

  auto const [low, high] = series.machin_pi_bounds(30);
  zelk::QNumber const pi = parse_rational("3.14159265358979323846264338327950288419716939937511");
  zelk::QNumber const tolerance = parse_rational("1e-30");
  std::cout << std::boolalpha << (low < pi && pi < high && !(tolerance < high - low)) << '\n';
  std::cout << to_decimal({low, high}, 3) << enclosing_doubles(from_double(0.5)).second << '\n';

  zelk::real::ElementaryFunctions functions;
  auto const fifth = functions.log(zelk::QNumber(3, 2), 9) / functions.log(2, 9);
  std::cout << zelk::na::best_nearest(fifth.midpoint(), 12) << '\n';

  try {
    parse_rational("1/0");
  } catch (ParseError const& error) {
    std::cout << error.column() << '\n';
  }
}
