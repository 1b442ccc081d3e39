#include "zelk/approx/convergent_walk.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <utility>
#include <vector>

namespace zelk::na {

namespace {

/// Whether q is certainly beyond small form.
bool exceeds_words(QNumber const& q) {
  return q.is_big() &&
         (mpz_fits_slong_p(q.numerator()) == 0 || mpz_fits_slong_p(q.denominator()) == 0);
}

/// [a0; a1, ..., a(count-1)], folded from the back. Requires: 1 <= count <= terms.size().
QNumber fold(std::vector<QNumber> const& terms, std::size_t count) {
  QNumber r = terms[count - 1];
  for (std::size_t i = count - 1; i > 0; --i) r = r.inv() + terms[i - 1];
  return r;
}

}  // namespace

ConvergentWalk::ConvergentWalk(RationalApproximator& approximator, QNumber const& q, unsigned first)
    : owner(approximator), key(q, first), is_wide(exceeds_words(q)) {
  assert(first >= 1 || q.is_integer());
}

QNumber const& ConvergentWalk::next() {
  if (key.first.is_integer()) return *(current = &key.first);
  if (current != nullptr) ++key.second;
  auto const known = owner.approx_cache.find(key);
  current = known != owner.approx_cache.end() ? &known.node->value.second : &compute();
  return *current;
}

QNumber const& ConvergentWalk::compute() {
  auto const& [q, prec] = static_cast<std::pair<QNumber const&, unsigned> const&>(key);
  if (!is_wide) {
    auto const c = owner.get_cf(q, prec);
    return owner.approx_cache.store(key,
                                    fold(c.terms, std::min<std::size_t>(prec, c.terms.size())));
  }
  if (recurrence)
    owner.cf_cache.make_room();  // all that is left of get_cf's offer of a known number
  else
    recurrence.emplace(owner.get_cf(q, prec));
  recurrence->advance(prec);
  return owner.approx_cache.store(key, QNumber::LowestTerms{recurrence->h, recurrence->k});
}

void ConvergentWalk::Recurrence::advance(unsigned count) {
  Integer term;
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

void ConvergentWalk::Recurrence::append(mpz_srcptr term) {
  mpz_addmul(h0, term, h);
  mpz_addmul(k0, term, k);
  mpz_swap(h, h0);
  mpz_swap(k, k0);
}

}  // namespace zelk::na
