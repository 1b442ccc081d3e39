#include "zelk/approx/cosine.h"

#include "zelk/approx/internal/tolerance.h"

namespace zelk::na {

PowerSeriesApproximator::Bounds cosine_bounds(PowerSeriesApproximator& series, QNumber const& x,
                                              unsigned prec) {
  QNumber const width = QNumber(2) * tolerance_of(prec);
  for (unsigned asked = prec;; asked += 1 + asked / 8) {
    auto bounds = series.maclaurin_sin_der_bounds(x, asked);
    if (bounds.second - bounds.first < width) return bounds;
  }
}

}  // namespace zelk::na
