// Wheels for Saturn in Huygens's planetarium: while Saturn turns 2640858 times the Earth turns
// 77708431 times, and a wheel can be cut with a few hundred teeth at most.

#include <iomanip>
#include <iostream>

#include "zelk/convert/stream.h"
#include "zelk/zelk.h"

int main() {
  using zelk::QNumber;
  zelk::na::RationalApproximator rational;
  QNumber const ratio(77708431, 2640858);
  long const most_teeth = 300;

  std::cout << "wheel/pinion   years until a degree off\n";
  for (unsigned terms = 1;; ++terms) {
    QNumber const teeth = rational.do_approx(ratio, terms);
    if (teeth.small_numerator() > most_teeth) break;
    QNumber years_a_degree = (abs(teeth.inv() - ratio.inv()) * 360).inv();
    std::cout << std::setw(12) << teeth << std::setw(7) << years_a_degree.self_decompose() << '\n';
  }
}
