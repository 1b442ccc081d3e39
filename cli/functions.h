#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "cli/demand.h"
#include "cli/query.h"
#include "zelk/approx/power_series_approximator.h"
#include "zelk/approx/rational_approximator.h"
#include "zelk/certify/prove.h"
#include "zelk/real/elementary_functions.h"

namespace zelk::cli {

/// What follows the name of a function. If it begins with dashes, it is an option and its value.
struct Argument {
  enum class Kind { number, expression, value, limit, terms, digits };

  std::string name;
  Kind kind;
  std::string summary;

  bool is_option() const { return name.starts_with("--"); }
};

/// An option without a value, which sets a field of the query. Those that set the same field to
/// different values exclude each other.
struct Flag {
  std::string name;
  int Query::*field;
  int value;
  std::string summary;
};

using Terms = std::vector<QNumber>;
using Bounds = na::PowerSeriesApproximator::Bounds;

/// A convergent of a number beside it.
struct Convergent {
  QNumber value;
  std::string_view side;  // how the value compares to the number: <, = or >
  QNumber distance;
};

/// The best number within a limit; its side and distance are told when all is asked for.
struct Best : Convergent {};

/// Bounds of an expression. The ends of a small one, or a large one, are told with a power of ten.
struct Evaluation {
  Bounds bounds;
  bool is_narrow;  // as was asked for
};

/// How two numbers compare: <, = or >.
struct Relation {
  std::string_view sign;
};

using Answer =
    std::variant<Terms, QNumber, std::vector<Convergent>, Best, Bounds, Evaluation, Relation>;

/// An answer and why it is right.
struct Proven {
  Answer answer;
  verify::Certificate certificate;
};

struct Approximators {
  explicit Approximators(double max_bits) : functions(max_bits) {}

  na::RationalApproximator rational;
  na::RationalApproximator floored;  // asked about numbers in big form alone
  na::PowerSeriesApproximator series{rational};
  real::ElementaryFunctions functions;
};

/// All that the command knows of one of its functions: a new one is one more row of
/// `all_functions`.
struct Function {
  std::string name;
  std::string summary;
  std::string examples;  // below its help, with what else is to be said
  std::vector<Argument> arguments;
  std::vector<Flag> flags;
  bool can_be_plotted;  // its bounds, over a range of points
  Demand (&demand)(Query const& query);
  Answer (&solve)(Query const& query, Approximators& approximators);  // Throws: Refusal.

  /// The same with a certificate, and what it states; null where there are none.
  Proven (*prove)(Query const& query, Approximators& approximators) = nullptr;
  std::string (*state)(Query const& query) = nullptr;

  /// The answer as a goal for Coq; null where there are none. Throws: Refusal.
  std::string (*goal)(Query const& query, Answer const& answer) = nullptr;
};

std::span<Function const> all_functions();

/// Null if there is none of that name.
Function const* find_function(std::string_view name);

}  // namespace zelk::cli
