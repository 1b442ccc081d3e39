#pragma once

#include <utility>

#include "zelk/approx/rational_approximator.h"
#include "zelk/config.h"
#include "zelk/containers/hash_map.h"
#include "zelk/containers/hasher.h"
#include "zelk/containers/table_view.h"
#include "zelk/numbers/q_number.h"

namespace zelk::na {

/// Enclosures, between two rationals, of exp and of sin with its derivative at a rational point,
/// and of pi. Precisions are decimal digits: prec stands for the tolerance 10^-prec.
///
/// Every answer is a pair (lower, upper) unless said otherwise, and is computed once: a repeated
/// query is one lookup. Nothing is ever dropped from the caches.
///
/// Cost of exp and sin at x = p/q, beyond a lookup: k terms, where k is about the least number with
/// |x|^k/k! < 10^-prec, all together a few times log k products of integers of the size of k! q^k,
/// and one reduction in the end; for exp at x > 0 that is two gcds, which take longest. There is no
/// range reduction: k is never less than about 2.7 |x|. One summation makes bounds and derivative,
/// whichever is asked for first.
///
/// Proofs and sources: docs/mathematics.md, sections 6 to 9.
class ZELK_EXPORT PowerSeriesApproximator {
 public:
  /// (lower, upper) unless said otherwise.
  using Bounds = std::pair<QNumber, QNumber>;

  /// What one summation of exp or sin yields; the default is the record of no summation at all.
  struct ApproxData {
    ApproxData() = default;
    /// A finished record.
    ApproxData(Bounds value, Bounds derivative, int index)
        : bounds(std::move(value)), der_bounds(std::move(derivative)), degree(index) {}

    /// What the functions without and with `der` in their names answer.
    Bounds bounds;
    Bounds der_bounds;

    /// For exp the power of the first term that the partial sum leaves out, for sin the highest
    /// power in the polynomial; 0 at the point 0.
    int degree = -1;
  };

  /// Hash and equality of a (point, precision) key.
  struct pair_hash_eq : hsh::pair_hash_eq {
    /// The finer hash goes with this equality.
    using FineFor = pair_hash_eq;
  };

  /// The tables of answers: by point and precision, and for pi by precision.
  using SeriesCache =
      hsh::HashMap<std::pair<QNumber, unsigned>, ApproxData, pair_hash_eq, pair_hash_eq>;
  using PiCache = hsh::HashMap<unsigned, Bounds, hsh::hash<unsigned>, std::equal_to<unsigned>>;

  /// Uses `ra`, which must outlive this object, to simplify the bounds of pi.
  PowerSeriesApproximator(RationalApproximator& ra) : rational_approx(ra) {}

  /// e^x, less than 10^-prec wide: partial sums of the Maclaurin series, closed for x > 0 by the
  /// tail estimate e^x <= S_k / (1 - x^k/k!), for x < 0 by the next, smaller term.
  Bounds maclaurin_exp_bounds(QNumber const& x, unsigned prec);

  /// The bounding expressions of `maclaurin_exp_bounds`, each sum and each term in them replaced by
  /// its derivative, which is the one before it: again bounds of e^x, but prec does not bound their
  /// width. In the order of those bounds: for x < 0 the first is the greater.
  Bounds maclaurin_exp_der_bounds(QNumber const& x, unsigned prec);

  /// sin x, less than 2 * 10^-prec wide: the Maclaurin polynomial, give or take the next power.
  /// The ends are not clipped to [-1, 1]. The summation goes on until it has also certified the
  /// sign of sin x: both ends have it, and points near a multiple of pi take more terms than the
  /// tolerance needs.
  Bounds maclaurin_sin_bounds(QNumber const& x, unsigned prec);

  /// cos x, from the derivative of the sine's polynomial; its width is not bounded by prec.
  Bounds maclaurin_sin_der_bounds(QNumber const& x, unsigned prec);

  /// pi, at most 10^-prec wide, by Machin's formula pi = 16 arctan(1/5) - 4 arctan(1/239), both
  /// ends then replaced by the first pair of convergents of equal length that still holds pi
  /// within the tolerance.
  ///
  /// Cost: quadratic in prec, in time and in what `ra` keeps: some 20 convergents a digit, with
  /// numerators and denominators of up to 5 prec digits.
  Bounds machin_pi_bounds(unsigned prec);

  /// Sum, at the cost given above even if the answer is known, and store the finished record under
  /// (x, prec) or prec; a record already there is assigned the same values.
  void maclaurin_exp_compute(QNumber const& x, unsigned prec);
  void maclaurin_sin_compute(QNumber const& x, unsigned prec);
  void machin_pi_compute(unsigned prec);

  /// What has been answered so far.
  hsh::TableView<SeriesCache> exp_records() const { return exp_cache; }
  hsh::TableView<SeriesCache> sin_records() const { return sin_cache; }
  hsh::TableView<PiCache> pi_records() const { return pi_cache; }

 private:
  ApproxData const& exp_record(QNumber const& x, unsigned prec);
  ApproxData const& sin_record(QNumber const& x, unsigned prec);

  SeriesCache exp_cache;
  SeriesCache sin_cache;
  PiCache pi_cache;
  RationalApproximator& rational_approx;
};

}  // namespace zelk::na
