#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "zelk/numbers/q_number.h"

namespace zelk::cli {

enum class Function { cf, approx, convergents, exp, sin, cos, pi };

/// What a function takes; an empty name stands for an argument that it does not take.
struct Signature {
  Function function;
  std::string_view name;
  std::string_view number;
  std::string_view count;
  bool takes_terms;
  bool takes_side;
  bool takes_derivative;
};

Signature const& signature_of(Function function);

/// A text and where it stands in its line, counted from 1.
struct Word {
  std::string_view text;
  std::size_t column = 1;
};

/// The parts of a query as they were written.
struct QueryText {
  Function function;
  std::optional<Word> number, count, terms;
  bool lower = false;
  bool upper = false;
  bool derivative = false;
};

struct Query {
  Function function;
  QNumber number;
  unsigned count;  // of terms or digits; without --terms all of them
  int direction;   // as in RationalApproximator::approx
  bool derivative;
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

  Kind kind;
  std::size_t column;
  std::string reason;
};

/// A query in words with blanks between them, as on the command line, comment and line end removed.
/// Throws: Refusal.
QueryText split_query(std::string_view line);

/// Throws: Refusal.
Query parse_query(QueryText const& text);

/// A fraction or decimal. Throws: Refusal.
QNumber parse_number(Word const& word);

/// A whole number up to `most`. Throws: Refusal.
unsigned long parse_whole(Word const& word, unsigned long most);

/// A number of terms or digits. Throws: Refusal.
unsigned parse_count(Word const& word);

}  // namespace zelk::cli
