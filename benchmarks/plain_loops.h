#pragma once

#include <utility>

/// The series summed as one would write them down for any type Q of rationals, and the simpler
/// bounds of pi by the recurrence of convergents.
namespace zelk::bench {

template <class Q>
using Ends = std::pair<Q, Q>;

/// e^x, narrower than epsilon. Requires: x > 0.
template <class Q>
Ends<Q> exp_loop(Q const& x, Q const& epsilon) {
  Q const one(1UL);
  Q sum = one;
  Q term = x;
  for (unsigned long k = 2;; ++k) {
    sum += term;
    term *= x / Q(k);
    if (!(term < one)) continue;
    Q const upper = sum / (one - term);
    if (upper - sum < epsilon) return {sum, upper};
  }
}

/// sin x, give or take less than epsilon. Requires: 0 < x <= 1.
template <class Q>
Ends<Q> sin_loop(Q const& x, Q const& epsilon) {
  Q const square = x * x;
  Q sum;
  Q term = x;
  for (unsigned long n = 1;; n += 2) {
    if (n % 4 == 1)
      sum += term;
    else
      sum -= term;
    Q const error = term * x / Q(n + 1);
    if (error < epsilon) return {sum - error, sum + error};
    term *= square / Q((n + 1) * (n + 2));
  }
}

/// The convergents of a number, one after the other, then the number itself for ever.
template <class Q>
class Convergents {
 public:
  explicit Convergents(Q const& q) : rest(q) {}

  Q const& next() {
    if (complete) return value;
    Q const term = floor(rest);
    rest -= term;
    complete = !(Q() < rest);
    if (!complete) rest = Q(1UL) / rest;
    h0 += term * h;
    k0 += term * k;
    std::swap(h, h0);
    std::swap(k, k0);
    return value = h / k;
  }

 private:
  Q rest;
  Q h{1UL}, h0, k, k0{1UL};
  Q value;
  bool complete = false;
};

/// pi, at most epsilon wide, from Machin's formula: the first convergents of equal length of two
/// successive partial sums that enclose both and are as narrow.
template <class Q>
Ends<Q> pi_loop(Q const& epsilon) {
  Q const step_5 = Q(1UL) / Q(25UL);
  Q const step_239 = Q(1UL) / Q(239UL * 239UL);
  Q power_5 = Q(16UL) / Q(5UL);
  Q power_239 = Q(4UL) / Q(239UL);
  Q term = power_5 - power_239;
  Q sum = term;
  Q last;
  for (unsigned long n = 3; epsilon < term; n += 2) {
    last = sum;
    power_5 *= step_5;
    power_239 *= step_239;
    term = (power_5 - power_239) / Q(n);
    if (n % 4 == 1)
      sum += term;
    else
      sum -= term;
  }
  Q const& lower = sum < last ? sum : last;
  Q const& upper = sum < last ? last : sum;
  Convergents<Q> from_below(lower);
  Convergents<Q> from_above(upper);
  for (;;) {
    Q const& a = from_below.next();
    Q const& b = from_above.next();
    if (!(lower < a) && !(b < upper) && !(epsilon < b - a)) return {a, b};
  }
}

}  // namespace zelk::bench
