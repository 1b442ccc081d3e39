#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "zelk/approx/euclid.h"
#include "zelk/approx/rational_approximator.h"
#include "zelk/containers/hasher.h"
#include "zelk/numbers/integer.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// The convergents of one number, one after the other: each `next` answers as
/// `RationalApproximator::do_approx` at the next precision, and leaves the same in both caches.
///
/// A number too big for small form has only big, and after the first only positive terms, so its
/// convergents h/k follow from the two before by h' = a h + h0, k' = a k + k0, in lowest terms,
/// and lie below it at odd lengths and above it at even ones until they end with the number
/// itself. That makes a step a constant number of operations on integers. Any other number has
/// at most 92 terms, and which of its values are in small form depends on every step: those are
/// folded afresh, from the last term back, with the arithmetic of numbers.
class ConvergentWalk {
 public:
  /// Starts before precision `first`. Requires: the approximator and q outlive the walk, q
  /// unchanged; first >= 1, unless q is an integer.
  ConvergentWalk(RationalApproximator& approximator, QNumber const& q, unsigned first);

  /// The next convergent: q itself if that is an integer, otherwise the cache's entry.
  QNumber const& next();

  /// Whether the last convergent is less than q, or greater. Requires: there was one.
  bool below() const {
    return is_wide ? key.second % 2 != 0 && !(*current == key.first) : *current < key.first;
  }
  bool above() const {
    return is_wide ? key.second % 2 == 0 && !(*current == key.first) : key.first < *current;
  }

 private:
  /// The last two convergents h/k and h0/k0 of a wide number, and its expansion: the terms that
  /// were known at first, and what they leave.
  struct Recurrence {
    explicit Recurrence(RationalApproximator::ContinuedFraction c)
        : known(std::move(c.terms)), rest(c.remainder) {}

    /// To the convergent after `count` terms, or to the last.
    void advance(unsigned count);
    void append(mpz_srcptr term);

    std::vector<QNumber> known;
    Euclid rest;
    unsigned length = 0;
    Integer h{1}, h0, k, k0{1};
  };

  QNumber const& compute();

  RationalApproximator& owner;
  hsh::pair_hash_eq::View key;  // the number, and the precision of `current`, at first of the next
  bool is_wide;
  QNumber const* current = nullptr;
  std::optional<Recurrence> recurrence;  // from the first convergent that the cache did not have
};

}  // namespace zelk::na
