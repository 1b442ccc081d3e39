#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cli/functions.h"
#include "cli/json.h"
#include "cli/solver.h"

namespace zelk::cli {

enum class Format { fraction, decimal, both, coq };
constexpr std::string_view format_names[] = {"fraction", "decimal", "both", "coq"};

/// How answers are written.
struct Style {
  Format format = Format::fraction;
  std::optional<unsigned> places;  // of decimals, if they are not to follow from the query
  bool json = false;
  bool certificate = false;  // in the place of text, and after JSON
  bool statement = false;    // of the certificate, in the place of text
};

inline ProofKind proof_of(Style const& style) {
  return style.certificate             ? ProofKind::certificate
         : style.statement             ? ProofKind::statement
         : style.format == Format::coq ? ProofKind::goal
                                       : ProofKind::none;
}

// Decimal places by default: these more than the digits asked for, or so many where no digits are.
constexpr unsigned places_beyond_digits = 2;
constexpr unsigned places_without_digits = 20;

/// Decimal places of an answer, if it is printed with decimals: to be set in its query.
std::optional<unsigned> places_of(Query const& query, Style const& style);

/// The answer as text, its parts with `separator` between them, its convergents with `between`.
std::string to_text(Query const& query, Answer const& answer, Style const& style,
                    std::string_view separator, std::string_view between);

/// What is to be told beside the answer, or null: an answer that is not 0 is shown by decimals that
/// are all 0, but for an end that was rounded outward; or bounds are farther apart than asked for.
char const* note_on(Query const& query, Answer const& answer);

/// All that is told of an answer: its proof in the place of text, and after an object.
std::string to_output(std::string_view query_text, Query const& query, Answered const& answered,
                      Style const& style, std::string_view separator, std::string_view between);

/// The answer as a JSON object on one line. Bytes that are no UTF-8 are replaced.
std::string to_json(std::string_view query_text, Query const& query, Answer const& answer,
                    Style const& style);

/// Gives `put` the members of a JSON object that tells why there is no answer, with the brace
/// behind them. Allocates nothing.
template <class Put>
void write_json_error(std::string_view query_text, std::size_t column, std::string_view reason,
                      Put put) {
  put(R"("query":)");
  write_json_string(query_text, put);
  put(R"(,"error":{"column":)");
  put(Decimal(column));
  put(R"(,"message":)");
  write_json_string(reason, put);
  put("}}");
}

}  // namespace zelk::cli
