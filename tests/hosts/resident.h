#pragma once

#include <climits>
#include <cstdlib>
#include <numeric>

#include "zelk/zelk.h"

namespace zelk::host {

inline void require(bool holds) {
  if (!holds) std::_Exit(1);
}

/// A host at namespace scope: it computes before, in and after main, and uses the shared scratch
/// integers and table of gcds itself between its calls. A wrong answer ends the program.
class Resident {
 public:
  Resident() {
    for (auto& scratch : QNumber::gmp_tmp) require(mpz_limbs_read(scratch) != nullptr);
    work();
  }
  ~Resident() { work(); }

  /// Every time at a new precision, so that something is left to compute.
  void work() {
    prec += 3;
    use_shared_objects();
    QNumber const square = most * most;
    require(square.is_big() && square / most == most && square - square == QNumber(0));
    use_shared_objects();
    require(third < square && rational.approx(square / 1000, prec, -1) < square / 999);
    use_shared_objects();
    auto const [low, high] = series.maclaurin_exp_bounds(third, prec);
    use_shared_objects();
    auto const [low_inverse, high_inverse] = series.maclaurin_exp_bounds(QNumber(-1, 3), prec);
    use_shared_objects();
    require(low * low_inverse < QNumber(1) && QNumber(1) < high * high_inverse);
    require(high * high_inverse - low * low_inverse < QNumber(1, 100));
  }

 private:
  void use_shared_objects() {
    ++turn;
    for (auto& scratch : QNumber::gmp_tmp) mpz_ui_pow_ui(scratch, 7, 300);
    mpz_neg(QNumber::gmp_tmp[turn % 4], QNumber::gmp_tmp[turn % 4]);
    for (long b = 1; b < 40; ++b) gcd_cache[turn][b] = gcd_cache[b][turn] = std::gcd(turn, b);
  }

  QNumber const most = QNumber(LONG_MAX);
  QNumber const third = QNumber(1, 3);
  na::RationalApproximator rational;
  na::PowerSeriesApproximator series{rational};
  unsigned prec = 0;
  long turn = 0;
};

}  // namespace zelk::host
