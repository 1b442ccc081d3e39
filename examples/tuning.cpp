// Equal temperaments with a good fifth: n of m steps to the octave, n/m a convergent of log2(3/2).
// No logarithm is computed. Eight decimals, from any table, suggest the convergents, and powers of
// 2 and 3/2, compared exactly, confirm them.

#include <iomanip>
#include <iostream>

#include "zelk/convert/stream.h"
#include "zelk/convert/text.h"
#include "zelk/zelk.h"

namespace {

using zelk::QNumber;

QNumber power(QNumber q, long n) {
  QNumber result(1);
  for (; n != 0; n /= 2, q *= q)
    if (n % 2 != 0) result *= q;
  return result;
}

/// (3/2)^m / 2^n for a fifth of n/m octaves: above 1 exactly if n/m is less than log2(3/2).
QNumber comma(QNumber const& fifth) {
  return power({3, 2}, fifth.small_denominator()) / power(2, fifth.small_numerator());
}

}  // namespace

int main() {
  zelk::na::RationalApproximator rational;
  QNumber const suggested = zelk::convert::parse_rational("0.58496250");

  std::cout << "octave   fifth   m pure fifths and n octaves\n";
  for (unsigned terms = 2;; ++terms) {
    QNumber const fifth = rational.do_approx(suggested, terms);
    QNumber const following = rational.do_approx(suggested, terms + 1);
    QNumber const gap = comma(fifth) - 1;
    // log2(3/2) must lie between this convergent and the next: then it has this one too.
    if (gap.sign() == (comma(following) - 1).sign()) break;
    QNumber parts = abs(gap).inv();
    std::cout << std::setw(6) << fifth.small_denominator() << std::setw(8)
              << fifth.small_numerator() << "   " << (gap.sign() > 0 ? "wider" : "narrower")
              << " by a part in " << parts.self_decompose() << '\n';
  }
}
