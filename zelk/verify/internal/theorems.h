#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zelk/numbers/q_number.h"
#include "zelk/verify/internal/budget.h"

namespace zelk::verify {

/// A claim that holds.
struct Known {
  std::string text;  // what it is about
  QNumber lower;
  QNumber upper;
  double bits;  // of all its numbers
};

/// What a theorem is given for a claim.
struct Case {
  std::span<QNumber const> arguments;
  std::vector<Known const*> premises;
  QNumber const& lower;
  QNumber const& upper;
  Budget& budget;
};

/// All that is known of a theorem: a new one is one more row.
struct Theorem {
  std::string_view name;
  std::size_t premises;
  std::size_t arguments;
  std::string_view text;  // with # for those of the premises in turn

  /// Whether it gives the claim. Throws: Rejected.
  bool (*follows)(Case const& claim);
};

/// Null if there is none of that name.
Theorem const* find_theorem(std::string_view name);

}  // namespace zelk::verify
