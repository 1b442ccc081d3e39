#pragma once

#include <vector>

#include "zelk/approx/rational_approximator.h"

namespace zelk::plain {

/// Continued fractions and convergents exactly as a textbook folds and unfolds them, one step after
/// the other and nothing remembered but what the caches hold.
class RationalApproximator {
 public:
  using ContinuedFraction = na::RationalApproximator::ContinuedFraction;

  ContinuedFraction get_cf(QNumber const& q, unsigned prec) {
    ContinuedFraction c(q);
    if (auto const known = expansions.find(q); known.node != nullptr) c = known.node->value.second;
    while (c.terms.size() < prec && !c.remainder.is_zero()) {
      c.terms.push_back(c.remainder.self_decompose());
      if (!c.remainder.is_zero()) c.remainder = c.remainder.inv();
    }
    expansions.insert({q, c});
    return c;
  }

  QNumber do_approx(QNumber const& q, unsigned prec) {
    if (q.is_integer()) return q;
    if (prec == 0) prec = 1;
    std::pair<QNumber, unsigned> const key(q, prec);
    if (auto const known = approximations.find(key); known.node != nullptr)
      return known.node->value.second;
    std::vector<QNumber> terms = get_cf(q, prec).terms;
    while (terms.size() > prec) terms.pop_back();
    QNumber r = terms.back();
    for (terms.pop_back(); !terms.empty(); terms.pop_back()) r = r.inv() + terms.back();
    approximations[key] = r;
    return r;
  }

  QNumber approx(QNumber const& q, unsigned prec, int dir) {
    QNumber r = do_approx(q, prec);
    while ((dir > 0 && r < q) || (dir < 0 && q < r)) r = do_approx(q, ++prec);
    return r;
  }

  na::RationalApproximator::ApproxCache approximations;
  na::RationalApproximator::CfCache expansions;
};

}  // namespace zelk::plain
