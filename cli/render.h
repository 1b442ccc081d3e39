#pragma once

#include <nlohmann/json.hpp>
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

/// The answer as a JSON object.
nlohmann::ordered_json to_json(std::string_view query_text, Query const& query,
                               Answer const& answer, Style const& style);

/// The refusal as a JSON object.
nlohmann::ordered_json to_json(std::string_view query_text, Refusal const& refusal);

/// On one line; bytes that are no UTF-8 are replaced.
std::string dump(nlohmann::ordered_json const& object);

}  // namespace zelk::cli
