#pragma once

#include <climits>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zelk/numbers/q_number.h"
#include "zelk/real/expression.h"

namespace zelk::cli {

struct Function;  // cli/functions.h

/// A text and where it stands in its line, counted from 1.
struct Word {
  std::string_view text;
  std::size_t column = 1;
};

/// A function with all that it is asked for.
struct Query {
  Function const* function;
  std::vector<std::optional<Word>> words = {};  // for each argument of the function, if given

  // What the words say.
  std::vector<QNumber> numbers = {};
  std::vector<real::Expression> expressions = {};
  unsigned terms = UINT_MAX;  // as many as there are
  std::optional<unsigned> digits = {};

  // What the flags say.
  int direction = 0;  // as in RationalApproximator::approx
  int kind = 0;       // of bounds: those of the function itself, or one of these
  static constexpr int derivative = 1;
  static constexpr int shortened = 2;
  int open = 0;      // whether an interval is without its ends
  int floor = 0;     // whether the terms of a negative number are floors, whatever its size
  int relative = 0;  // whether `digits` are those of the value, and not decimals

  std::optional<unsigned> places = {};  // of the decimals that are to be printed, if there are any
};

/// Why a query is not answered: it is malformed, or well formed and without an answer here.
/// `what()` names the input too.
class Refusal : public std::runtime_error {
 public:
  enum class Kind { malformed, unanswerable };

  Refusal(Kind refusal_kind, std::size_t offending_column, std::string short_reason,
          std::string const& message)
      : std::runtime_error(message),
        kind(refusal_kind),
        column(offending_column),
        reason(std::move(short_reason)) {}

  /// Of a query as a whole.
  Refusal(Kind refusal_kind, std::string const& message)
      : Refusal(refusal_kind, 1, message, message) {}

  Kind kind;
  std::size_t column;
  std::string reason;
};

/// Reads a query from its words with blanks or tabs between them, as on the command line: a word in
/// quotes, single or double, with blanks around them, may hold blanks. The words of the result are
/// parts of the line.
/// Throws: Refusal.
Query parse_query(std::string_view line);

/// The line up to its first # that is not in a word in quotes.
std::string_view without_comment(std::string_view line);

/// Sets the numbers, terms and digits of a query from its words. Throws: Refusal.
void parse_words(Query& query);

/// A fraction or decimal. Also with blanks around it, a plus sign, or no digits on one side of the
/// point. Throws: Refusal.
QNumber parse_number(Word const& word);

/// An expression. Throws: Refusal.
real::Expression parse_expression(Word const& word);

/// A whole number up to `most`. Throws: Refusal.
unsigned long parse_whole(Word const& word, unsigned long most, std::string const& name = "");

/// A number of terms or digits, the value of `name` if that is not empty. Throws: Refusal.
unsigned parse_count(Word const& word, std::string const& name = "");

}  // namespace zelk::cli
