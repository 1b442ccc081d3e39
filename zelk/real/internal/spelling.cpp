#include "zelk/real/internal/spelling.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace zelk::real {

namespace {

char lower_case(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Levenshtein's distance to a name: letters put in, left out or replaced, in either case.
std::size_t edit_distance(std::string_view text, std::string_view name) {
  std::vector<std::size_t> distances(name.size() + 1);  // of the text so far to the name's heads
  std::iota(distances.begin(), distances.end(), std::size_t{0});
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::size_t replaced = std::exchange(distances[0], i + 1);
    for (std::size_t j = 0; j < name.size(); ++j) {
      replaced += lower_case(text[i]) != name[j];
      std::size_t const least = std::min({replaced, distances[j] + 1, distances[j + 1] + 1});
      replaced = std::exchange(distances[j + 1], least);
    }
  }
  return distances.back();
}

/// Whether a name that could be taken for one of ours is another function elsewhere, as a digit
/// tells too: log2, atan2. The value of a function that was not meant is worse than none.
bool has_own_meaning(std::string_view name) {
  static constexpr std::string_view others[] = {
      "acosd", "acosh", "acot",  "asind", "asinh", "atand", "atanh", "ccos",  "cexp",
      "cin",   "cis",   "clog",  "cosc",  "cosd",  "coshc", "cosm",  "cot",   "coth",
      "csin",  "csqrt", "ctan",  "exph",  "expi",  "expm",  "ilog",  "isqrt", "lg",
      "logb",  "logd",  "logn",  "logp",  "min",   "rsqrt", "sgn",   "si",    "sign",
      "sinc",  "sind",  "sinhc", "sinm",  "sqr",   "tanc",  "tand",  "tanhc", "tau"};
  return name.find_first_of("0123456789") != std::string_view::npos ||
         std::ranges::any_of(
             others, [&](std::string_view other) { return edit_distance(name, other) == 0; });
}

bool is_name(Row const& row) { return row.precedence == 0 && !row.name.empty(); }

}  // namespace

Row const* find_name(std::string_view name) {
  for (auto const& row : all_rows())
    if (is_name(row) && (row.name == name || row.other_name == name)) return &row;
  return nullptr;
}

Row const* find_operator(char symbol, unsigned arity) {
  for (auto const& row : all_rows())
    if (row.precedence > 0 && row.name[0] == symbol && row.arity == arity) return &row;
  return nullptr;
}

std::string_view nearest_name(std::string_view wrong) {
  if (wrong.size() > 16) return {};  // far from all
  std::string text(wrong);
  if (text.starts_with("arc")) text.erase(1, 2);
  if (has_own_meaning(text)) return {};
  std::string_view nearest;
  std::size_t least = 2;
  for (auto const& row : all_rows()) {
    if (!is_name(row)) continue;
    auto const distance = edit_distance(text, row.name);
    if (distance < least && 2 * distance < row.name.size()) {
      least = distance;
      nearest = row.name;
    }
  }
  return nearest;
}

}  // namespace zelk::real
