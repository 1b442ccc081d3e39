#include "zelk/approx/convergents.h"

#include <cassert>

#include "zelk/approx/internal/convergent_recurrence.h"
#include "zelk/work/poll.h"

namespace zelk::na {

std::vector<QNumber> convergents(std::vector<QNumber> const& terms) {
  ConvergentRecurrence last;
  std::vector<QNumber> all;
  all.reserve(terms.size());
  for (QNumber const& term : terms) {
    assert(term.is_integer());
    if (all.size() % 16 == 0) work::poll(64 * work::pass(work::bits_of(last.h)));
    last.append(term.numerator());
    // Negative terms can make k negative. With all signs changed the recurrence goes on the same.
    if (mpz_sgn(last.k.get()) < 0)
      for (mpz_ptr n : {mpz_ptr(last.h), mpz_ptr(last.h0), mpz_ptr(last.k), mpz_ptr(last.k0)})
        mpz_neg(n, n);
    all.push_back(QNumber::from_lowest_terms({last.h, last.k}));
  }
  return all;
}

}  // namespace zelk::na
