#include "zelk/approx/rational_approximator.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

namespace zelk::na {

namespace {

/// [a0; a1, ..., a(count-1)], folded from the back. Requires: 1 <= count <= terms.size().
QNumber fold(std::vector<QNumber> const& terms, std::size_t count) {
  QNumber r = terms[count - 1];
  for (std::size_t i = count - 1; i-- > 0;) r = r.inv() + terms[i];
  return r;
}

}  // namespace

RationalApproximator::ContinuedFraction RationalApproximator::get_cf(QNumber const& q,
                                                                     unsigned prec) {
  ContinuedFraction c(q);
  // Assigned, not copied: the remainder keeps q's form if that is big, and with it q's rounding.
  if (auto const known = cf_cache.find(q); known != cf_cache.end()) c = known.node->value.second;
  while (c.terms.size() < prec && !c.remainder.is_zero()) {
    c.terms.push_back(c.remainder.self_decompose());
    if (!c.remainder.is_zero()) c.remainder = c.remainder.inv();
  }
  cf_cache.insert({q, c});
  return c;
}

QNumber RationalApproximator::do_approx(QNumber const& q, unsigned prec) {
  if (q.is_integer()) return q;
  assert(prec >= 1);
  std::pair<QNumber, unsigned> const key(q, prec);
  if (auto const known = approx_cache.find(key); known != approx_cache.end())
    return known.node->value.second;
  ContinuedFraction const c = get_cf(q, prec);
  QNumber r = fold(c.terms, std::min<std::size_t>(prec, c.terms.size()));
  approx_cache.insert({key, r});
  return r;
}

QNumber RationalApproximator::approx(QNumber const& q, unsigned prec, int dir) {
  QNumber r = do_approx(q, prec);
  auto const on_wrong_side = [&] { return dir > 0 ? r < q : dir < 0 && q < r; };
  for (unsigned p = prec + 1; on_wrong_side(); ++p) r = do_approx(q, p);
  return r;
}

}  // namespace zelk::na
