#include "zelk/approx/convergent_walk.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace zelk::na {

namespace {

/// Whether no small form can hold q.
bool exceeds_words(QNumber const& q) {
  return q.is_big() &&
         (mpz_fits_slong_p(q.numerator()) == 0 || mpz_fits_slong_p(q.denominator()) == 0);
}

/// [a0; a1, ..., a(count-1)], folded from the back. Requires: 1 <= count <= terms.size().
QNumber fold(std::vector<QNumber> const& terms, std::size_t count) {
  QNumber r = terms[count - 1];
  for (std::size_t i = count - 1; i-- > 0;) r = r.inv() + terms[i];
  return r;
}

}  // namespace

ConvergentWalk::ConvergentWalk(RationalApproximator& approximator, QNumber const& number,
                               unsigned first)
    : owner(approximator),
      q(number),
      is_wide(exceeds_words(number)),
      prec(first - 1),
      current(&number) {
  assert(first >= 1 || number.is_integer());
}

QNumber const& ConvergentWalk::next() {
  ++prec;
  if (q.is_integer()) return q;
  std::pair<QNumber const&, unsigned> const key(q, prec);
  if (auto const known = owner.approx_cache.find(key); known != owner.approx_cache.end())
    current = &known.node->value.second;
  else
    current = &owner.approx_cache.store(key, compute());
  return *current;
}

QNumber ConvergentWalk::compute() {
  if (!is_wide) {
    auto const c = owner.get_cf(q, prec);
    return fold(c.terms, std::min<std::size_t>(prec, c.terms.size()));
  }
  if (!recurrence) {
    recurrence.emplace(owner.get_cf(q, prec));
  } else {
    // As get_cf would: extend a copy of the stored expansion, and offer it in vain.
    recurrence->expansion.extend(prec);
    owner.cf_cache.make_room();
  }
  return recurrence->convergent(prec);
}

QNumber ConvergentWalk::Recurrence::convergent(unsigned terms) {
  for (; done < terms && done < expansion.terms.size(); ++done) {
    IntegerView const a = expansion.terms[done].numerator();
    mpz_addmul(h0, a, h);
    mpz_addmul(k0, a, k);
    mpz_swap(h, h0);
    mpz_swap(k, k0);
  }
  return QNumber::big_from_mpz(h, k, QNumber::Terms::lowest);
}

}  // namespace zelk::na
