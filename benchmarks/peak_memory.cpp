#include <sys/resource.h>

#include <iostream>

#include "zelk/approx/power_series_approximator.h"

/// Prints the largest resident size, in KiB, of a process that computes pi to 1000 digits.
int main() {
  zelk::na::RationalApproximator approximator;
  zelk::na::PowerSeriesApproximator series(approximator);
  if (!(series.machin_pi_bounds(1000).first < zelk::QNumber(22, 7))) return 1;
  rusage usage{};
  if (getrusage(RUSAGE_SELF, &usage) != 0) return 1;
  std::cout << usage.ru_maxrss << '\n';
}
