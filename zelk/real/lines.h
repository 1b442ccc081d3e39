#pragma once

#include "zelk/config.h"
#include "zelk/numbers/q_number.h"
#include "zelk/real/accuracy.h"
#include "zelk/real/elementary_functions.h"
#include "zelk/real/interval.h"

/// Straight lines that certainly lie below or above a function, touching it up to the accuracy:
/// what branch-and-bound and verification put in place of a function that is not linear. Source:
/// docs/mathematics.md, section 16.
namespace zelk::real {

/// slope * x + intercept.
struct [[nodiscard]] Line {
  QNumber slope;
  QNumber intercept;

  QNumber operator()(QNumber const& x) const { return slope * x + intercept; }
  friend bool operator==(Line const&, Line const&) = default;
};

/// Below e^x for every real x: the tangent at x0 up to the accuracy, which is that of e^x0.
ZELK_EXPORT Line tangent_below_exp(ElementaryFunctions& functions, QNumber const& x0,
                                   Accuracy accuracy);

/// Above e^x for every x of the piece: the chord between its ends up to the accuracy.
ZELK_EXPORT Line chord_above_exp(ElementaryFunctions& functions, Interval const& piece,
                                 Accuracy accuracy);

/// A line on each side.
struct [[nodiscard]] LinePair {
  Line below;
  Line above;
};

/// Below and above sin x for every x of the piece: its chord, and the tangent at `touch`, on the
/// sides where they lie; the tangent is moved outward by at most the accuracy times 1 and twice the
/// piece's length.
///
/// Throws: std::domain_error unless sin x has one sign on the piece, and so its curvature; or if
/// `touch` lies beyond it.
ZELK_EXPORT LinePair lines_around_sin(ElementaryFunctions& functions, Interval const& piece,
                                      QNumber const& touch, Accuracy accuracy);

}  // namespace zelk::real
