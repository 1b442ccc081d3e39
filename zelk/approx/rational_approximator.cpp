#include "zelk/approx/rational_approximator.h"

#include <algorithm>
#include <bit>
#include <cstddef>

#include "zelk/approx/internal/convergent_walk.h"
#include "zelk/approx/internal/euclid.h"
#include "zelk/numbers/integer.h"
#include "zelk/work/poll.h"

namespace zelk::na {

namespace {

/// Splits terms off the remainder of c until it has `count`, or all.
void extend(RationalApproximator::ContinuedFraction& c, unsigned count) {
  auto const incomplete = [&] { return c.terms.size() < count; };
  if (!incomplete() || c.remainder.is_zero()) return;
  if (!c.remainder.is_big()) {
    // Two steps take more than a bit off the denominator, and on the average three (Levy's
    // theorem).
    auto const bits = std::bit_width(static_cast<unsigned long>(c.remainder.small_denominator()));
    c.terms.reserve(std::min<std::size_t>(count, c.terms.size() + bits));
    do {
      c.terms.push_back(c.remainder.self_decompose());
      if (c.remainder.is_zero()) return;
      c.remainder = c.remainder.inv();
    } while (incomplete());
    return;
  }
  // The same of a big form, which splits by floors and stays big.
  Euclid rest(c.remainder);
  Integer const one(1UL);
  Integer term;
  constexpr std::size_t block = 64;
  while (incomplete() && !rest.is_done()) {
    if (c.terms.size() % block == 0)
      work::poll(block * work::pass(work::bits_of(c.remainder.numerator())));
    rest.split(term);
    c.terms.emplace_back(QNumber::LowestTerms{term, one});
  }
  c.remainder = QNumber(rest.rest());
}

}  // namespace

RationalApproximator::ContinuedFraction RationalApproximator::get_cf(QNumber const& q,
                                                                     unsigned prec) {
  ContinuedFraction c(q);
  // Assigned, not copied: the remainder keeps q's form if that is big, and with it q's rounding.
  if (auto const known = cf_cache.find(q); known != cf_cache.end()) c = known.node->value.second;
  extend(c, prec);
  std::size_t index;
  CfCache::Bucket* node;
  cf_cache.find_or_add(q, &index, &node, q, c);
  return c;
}

QNumber RationalApproximator::do_approx(QNumber const& q, unsigned prec) {
  return ConvergentWalk(*this, q, prec).next();
}

QNumber RationalApproximator::approx(QNumber const& q, unsigned prec, int dir) {
  ConvergentWalk walk(*this, q, prec);
  for (;;) {
    QNumber const& r = walk.next();
    if (!(dir > 0 ? r < q : dir < 0 && q < r)) return r;
  }
}

}  // namespace zelk::na
