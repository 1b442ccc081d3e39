#include "zelk/approx/rational_approximator.h"

#include "zelk/approx/convergent_walk.h"

namespace zelk::na {

void RationalApproximator::ContinuedFraction::extend(unsigned count) {
  while (terms.size() < count && !remainder.is_zero()) {
    terms.push_back(remainder.self_decompose());
    if (!remainder.is_zero()) remainder.invert();
  }
}

RationalApproximator::ContinuedFraction RationalApproximator::get_cf(QNumber const& q,
                                                                     unsigned prec) {
  ContinuedFraction c(q);
  // Assigned, not copied: the remainder keeps q's form if that is big, and with it q's rounding.
  if (auto const known = cf_cache.find(q); known != cf_cache.end()) c = known.node->value.second;
  c.extend(prec);
  cf_cache.insert({q, c});
  return c;
}

QNumber RationalApproximator::do_approx(QNumber const& q, unsigned prec) {
  return ConvergentWalk(*this, q, prec).next();
}

QNumber RationalApproximator::approx(QNumber const& q, unsigned prec, int dir) {
  ConvergentWalk walk(*this, q, prec);
  QNumber r = walk.next();
  while (dir > 0 ? walk.below() : dir < 0 && walk.above()) r = walk.next();
  return r;
}

}  // namespace zelk::na
