#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cli/solver.h"

namespace zelk::cli {

enum class Format { fraction, decimal, both };

/// How answers are written.
struct Style {
  Format format = Format::fraction;
  std::optional<unsigned>
      places;  // of decimals; by default two more than the digits asked for, or 20
  bool json = false;
};

/// Decimal places of an answer; 0 when it is printed without decimals.
unsigned places_of(Query const& query, Style const& style);

/// The answer as text, its parts with `separator` between them, its convergents with `between`.
std::string to_text(Query const& query, Answer const& answer, Style const& style,
                    std::string_view separator, std::string_view between);

/// The answer, or why there is none, as a JSON object on one line. Bytes that are no UTF-8 are
/// replaced.
std::string to_json(std::string_view query_text, Query const& query, Answer const& answer,
                    Style const& style);
std::string to_json(std::string_view query_text, Refusal const& refusal);

}  // namespace zelk::cli
