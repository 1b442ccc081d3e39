#include "zelk/approx/convergents.h"

#include <cassert>

#include "zelk/approx/internal/convergent_recurrence.h"

namespace zelk::na {

std::vector<QNumber> convergents(std::vector<QNumber> const& terms) {
  ConvergentRecurrence last;
  std::vector<QNumber> all;
  all.reserve(terms.size());
  for (QNumber const& term : terms) {
    assert(term.is_integer());
    last.append(term.numerator());
    all.push_back(QNumber::from_mpz(last.h, last.k));
  }
  return all;
}

}  // namespace zelk::na
