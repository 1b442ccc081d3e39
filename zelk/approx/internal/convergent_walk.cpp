#include "zelk/approx/internal/convergent_walk.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <utility>
#include <vector>

#include "zelk/numbers/internal/fixed_number.h"
#include "zelk/work/poll.h"

namespace zelk::na {

namespace {

/// Whether q is certainly beyond small form.
bool exceeds_words(QNumber const& q) {
  return q.is_big() &&
         (mpz_fits_slong_p(q.numerator()) == 0 || mpz_fits_slong_p(q.denominator()) == 0);
}

/// [a0; a1, ..., a(count-1)], folded from the back. Requires: 1 <= count <= terms.size().
QNumber fold(std::vector<QNumber> const& terms, std::size_t count) {
  assert(1 <= count && count <= terms.size());
  QNumber r = terms[count - 1];
  for (std::size_t i = count - 1; i > 0; --i) r = r.inv() + terms[i - 1];
  return r;
}

}  // namespace

ConvergentWalk::ConvergentWalk(RationalApproximator& approximator, QNumber const& q, unsigned first)
    : owner(approximator), key(q, std::max(first, 1U)), is_wide(exceeds_words(q)) {}

QNumber const& ConvergentWalk::next() {
  if (key.first.is_integer()) return key.first;
  if (std::exchange(is_under_way, true)) ++key.second;
  auto const known = owner.approx_cache.find_by(key);
  bool const is_known = known != owner.approx_cache.end();
  if (is_wide) return is_known ? known.node->value.second : compute();
  last = is_known ? known.node->value.second : compute_folded();
  return last;
}

QNumber ConvergentWalk::compute_folded() {
  auto const c = owner.get_cf(key.first, key.second);
  QNumber folded = fold(c.terms, std::min<std::size_t>(key.second, c.terms.size()));
  // The entry can be an older one, of an equal number in big form, that the growth of the table
  // has put where this key looks. It stays big: the answer is what was folded.
  owner.approx_cache.store(key, folded);
  return folded;
}

QNumber const& ConvergentWalk::compute() {
  auto const& [q, prec] = static_cast<std::pair<QNumber const&, unsigned> const&>(key);
  work::poll(10 * work::pass(work::bits_of(q.numerator())), 1);
  // Each convergent after the first would ask for the expansion once more, and offer it to a table
  // that has it: the load check is what such an offer does.
  if (recurrence) {
    owner.cf_cache.make_room();
  } else {
    auto expansion = owner.get_cf(q, prec);
    recurrence.emplace(std::move(expansion), owner.cf_cache.find(q).node->value.first);
  }
  recurrence->advance(prec);
  std::size_t index;
  RationalApproximator::ApproxCache::Bucket* node;
  owner.approx_cache.find_or_add(key, &index, &node,
                                 std::pair(detail::SharedDigits{recurrence->number}, prec),
                                 detail::FixedFraction{recurrence->h, recurrence->k});
  return node->value.second;
}

void ConvergentWalk::Recurrence::advance(unsigned count) {
  for (; length < count; ++length) {
    if (length < known.size()) {
      append(known[length].numerator());
    } else if (!rest.is_done()) {
      rest.split(term);
      append(term);
    } else {
      return;
    }
  }
}

}  // namespace zelk::na
