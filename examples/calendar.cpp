// Leap-year rules: the convergents of the year, and the best rule that a century has room for.

#include <iomanip>
#include <iostream>

#include "zelk/approx/best.h"
#include "zelk/convert/stream.h"
#include "zelk/convert/text.h"
#include "zelk/zelk.h"

namespace {

using zelk::QNumber;

/// A rule with `mean` days a year: its leap years, and how long it takes to be wrong by a day.
void show(QNumber const& mean, QNumber const& year) {
  QNumber years_a_day = abs(mean - year).inv();
  std::cout << std::setw(9) << mean << std::setw(9) << mean - 365 << std::setw(9)
            << years_a_day.self_decompose() << " years, " << (year < mean ? "behind" : "ahead")
            << '\n';
}

}  // namespace

int main() {
  zelk::na::RationalApproximator rational;
  QNumber const year = zelk::convert::parse_rational("365.24219");

  std::cout << "days/year     leap   a day off after\n";
  for (unsigned terms = 1; terms <= 5; ++terms) show(rational.do_approx(year, terms), year);
  std::cout << "The best within a century:\n";
  show(zelk::na::best_nearest(year, 100), year);
  std::cout << "Julian and Gregorian:\n";
  show({1461, 4}, year);
  show({146097, 400}, year);
}
