#pragma once

#include <utility>
#include <vector>

#include "zelk/config.h"
#include "zelk/containers/hash_map.h"
#include "zelk/containers/hasher.h"
#include "zelk/containers/hashtable.h"
#include "zelk/containers/table_view.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// Simpler rationals for a rational: the convergents of its continued fraction
/// [a0; a1, a2, ...] = a0 + 1/(a1 + 1/(a2 + ...)), and convergents on a chosen side of it.
///
/// Precisions count terms, a0 included. Expansions and convergents are kept for as long as the
/// approximator lives; neither is ever dropped or changed.
///
/// Proofs and sources: docs/mathematics.md, sections 3 to 5.
class ZELK_EXPORT RationalApproximator {
 public:
  /// A number, the terms of its expansion found so far, and what is still to expand: 0 once the
  /// expansion is complete, otherwise the complete quotient r with
  /// number = [a0; ..., a(k-1), r].
  struct ContinuedFraction {
    /// Nothing expanded yet: all of q is left.
    ContinuedFraction(QNumber const& q) : number(q), remainder(q) {}

    /// As the record says: the number, the terms, and what is left after them.
    QNumber number;
    std::vector<QNumber> terms;
    QNumber remainder;
  };

  /// Hash and equality of a (number, precision) key.
  struct pair_hash_eq : hsh::pair_hash_eq {
    /// The finer hash goes with this equality.
    using FineFor = pair_hash_eq;
  };

  /// The tables of convergents, by number and precision, and of expansions, by number.
  using ApproxCache =
      hsh::HashMap<std::pair<QNumber, unsigned>, QNumber, pair_hash_eq, pair_hash_eq>;
  using CfCache = hsh::Hashtable<std::pair<QNumber, ContinuedFraction>,
                                 hsh::GetKey_pair<QNumber, ContinuedFraction>, QNumber,
                                 Hasher<QNumber>, std::equal_to<QNumber>>;

  /// The expansion of q to at least prec terms, or complete. Zero has no terms.
  ///
  /// The terms are those that `QNumber::self_decompose` splits off, so a negative number in small
  /// form has no positive term (-7/2 is [-3; -2]), and one in big form has a floor first and
  /// positive terms after it ([-4; 2]). The cache keeps the expansion as the first call for q
  /// left it; later calls extend a copy of that, and may return more terms than they asked for.
  /// Cost: one split and one reciprocal for each term beyond the stored ones.
  ContinuedFraction get_cf(QNumber const& q, unsigned prec);

  /// The convergent of q after prec terms, at least one; q itself once prec reaches the number of
  /// its terms.
  ///
  /// Cost: one lookup when (q, prec) was asked before; otherwise one pass over prec terms.
  QNumber do_approx(QNumber const& q, unsigned prec);

  /// The first convergent from precision prec on that is an upper bound of q (dir > 0), a lower
  /// bound of q (dir < 0), or simply the one at prec (dir = 0).
  ///
  /// Cost: that of `do_approx` for each precision tried: where the
  /// sides alternate two, at most one for each term.
  QNumber approx(QNumber const& q, unsigned prec, int dir);

  /// What has been answered and expanded so far.
  hsh::TableView<ApproxCache> approximations() const { return approx_cache; }
  hsh::TableView<CfCache> expansions() const { return cf_cache; }

 private:
  friend class ConvergentWalk;

  ApproxCache approx_cache;
  CfCache cf_cache;
};

}  // namespace zelk::na
