#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "zelk/numbers/q_number.h"
#include "zelk/verify/internal/budget.h"
#include "zelk/verify/internal/series.h"

namespace zelk::verify {

/// A claim that holds.
struct Known {
  std::string text;  // what it is about
  QNumber lower;
  QNumber upper;
  double bits;  // of its ends
};

/// What a theorem is given for a claim.
struct Case {
  std::vector<Known const*> premises;
  QNumber const& lower;
  QNumber const& upper;
  Series series;  // to as many bits as the argument says
  Budget& budget;
};

/// All that is known of a theorem: a new one is one more row.
struct Theorem {
  std::string_view name;
  std::size_t premises;
  std::size_t arguments;
  std::string_view text;  // with # for those of the premises in turn

  /// Whether it gives the claim. Throws: Rejected.
  bool (*follows)(Case& claim);
};

/// Null if there is none of that name.
Theorem const* find_theorem(std::string_view name);

}  // namespace zelk::verify
