#pragma once

#include <cassert>
#include <optional>
#include <utility>
#include <vector>

#include "zelk/approx/internal/convergent_recurrence.h"
#include "zelk/approx/internal/euclid.h"
#include "zelk/approx/rational_approximator.h"
#include "zelk/containers/hasher.h"
#include "zelk/numbers/integer.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// The convergents of one number, one after the other: each `next` answers as
/// `RationalApproximator::do_approx` at the next precision, and leaves the same in both caches.
///
/// A number too big for small form has only big, and after the first only positive terms, so its
/// convergents follow from the two before by the recurrence, in lowest terms, and lie below it at
/// odd lengths and above it at even ones until they end with the number itself. That makes a step
/// a constant number of operations on integers. The keys of its convergents in the cache share the
/// digits of the number that its expansion has for key, which stays as long. Any other number has
/// at most 92 terms, and which of its values are in small form depends on every step: those are
/// folded afresh, from the last term back, with the arithmetic of numbers.
class ConvergentWalk {
 public:
  /// Starts before precision `first`, or before 1. Requires: the approximator and q outlive the
  /// walk, q unchanged.
  ConvergentWalk(RationalApproximator& approximator, QNumber const& q, unsigned first);

  /// The next convergent, good until the one after it: q itself if that is an integer. Forms are
  /// those of one number to which all are assigned: after one in big form, all are.
  QNumber const& next();

  /// Whether c, the value of the last convergent in any form, lies below q, or above it.
  /// Requires: c != q.
  bool is_below(QNumber const& c) const {
    assert(!(c == key.first));
    return is_wide ? key.second % 2 != 0 : c < key.first;
  }
  bool is_above(QNumber const& c) const {
    assert(!(c == key.first));
    return is_wide ? key.second % 2 == 0 : key.first < c;
  }

 private:
  /// The last two convergents of a wide number, and its expansion: the terms that were known at
  /// first, and what they leave.
  struct Recurrence : ConvergentRecurrence {
    Recurrence(RationalApproximator::ContinuedFraction c, QNumber const& q)
        : number(q), known(std::move(c.terms)), rest(c.remainder) {}

    /// To the convergent after `count` terms, or to the last.
    void advance(unsigned count);

    QNumber const& number;  // as the table of expansions keeps it
    std::vector<QNumber> known;
    Euclid rest;
    Integer term;  // the last one split off
    unsigned length = 0;
  };

  QNumber const& compute();
  QNumber compute_folded();

  RationalApproximator& owner;
  hsh::pair_hash_eq::View key;  // the number, and the precision of the last convergent
  bool is_wide;
  bool is_under_way = false;             // there was a last one
  QNumber last;                          // of a number that is not wide
  std::optional<Recurrence> recurrence;  // from the first convergent that the cache did not have
};

}  // namespace zelk::na
