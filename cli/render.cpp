#include "cli/render.h"

#include <algorithm>
#include <climits>
#include <nlohmann/json.hpp>
#include <utility>

#include "zelk/convert/decimal.h"
#include "zelk/convert/text.h"

namespace zelk::cli {
namespace {

using convert::to_string;
using nlohmann::ordered_json;

/// In ascending order: the companion bounds of exp need not be.
Bounds ascending(Bounds const& bounds) {
  return bounds.second < bounds.first ? Bounds(bounds.second, bounds.first) : bounds;
}

/// Writes the parts of one answer.
class Writer {
 public:
  Writer(Query const& query, Style const& style, std::string_view between_parts,
         std::string_view between_convergents)
      : places(places_of(query, style)),
        format(style.format),
        separator(between_parts),
        between(between_convergents) {}

  /// In the usual notation, `[4; 2, 6, 7]`. The library gives zero no terms; as everywhere else it
  /// is written here as the integer that it is.
  std::string operator()(Terms const& terms) const {
    if (terms.empty()) return "[0]";
    std::string text = "[" + to_string(terms.front());
    for (std::size_t i = 1; i < terms.size(); ++i)
      text += (i == 1 ? "; " : ", ") + to_string(terms[i]);
    return text + "]";
  }

  std::string operator()(QNumber const& value) const {
    return joined(to_string(value), decimal(value));
  }

  std::string operator()(Bounds const& bounds) const {
    return joined(to_string(bounds.first) + std::string(separator) + to_string(bounds.second),
                  convert::to_decimal(bounds, places));
  }

  std::string operator()(std::vector<Convergent> const& convergents) const {
    std::string text;
    for (auto const& [value, side, distance] : convergents) {
      if (!text.empty()) text += between;
      bool const fraction = format != Format::decimal;
      text += fraction ? to_string(value) : decimal(value);
      text += ' ' + std::string(side) + ' ';
      text += fraction ? to_string(distance) : decimal(distance);
      if (format == Format::both) text += ' ' + decimal(value) + ' ' + decimal(distance);
    }
    return text;
  }

 private:
  std::string decimal(QNumber const& value) const {
    return convert::to_decimal(value, places, convert::Rounding::nearest);
  }

  std::string joined(std::string fraction, std::string const& decimal) const {
    if (format == Format::fraction) return fraction;
    if (format == Format::decimal) return decimal;
    return fraction.append(separator) + decimal;
  }

  unsigned places;
  Format format;
  std::string_view separator;
  std::string_view between;
};

/// Enters the parts of one answer into an object. Numbers as strings: a JSON number would be
/// rounded by whoever reads it.
class JsonWriter {
 public:
  JsonWriter(Query const& query, Style const& style, ordered_json& into)
      : places(places_of(query, style)),
        with_decimals(style.format != Format::fraction),
        object(into) {}

  void operator()(Terms const& terms) const {
    auto& list = object["terms"] = ordered_json::array();
    for (QNumber const& term : terms) list.push_back(to_string(term));
    if (terms.empty()) list.push_back("0");
  }

  void operator()(QNumber const& value) const {
    object["value"] = number(value, convert::Rounding::nearest);
  }

  void operator()(Bounds const& bounds) const {
    auto const [lower, upper] = ascending(bounds);
    object["lower"] = number(lower, convert::Rounding::down);
    object["upper"] = number(upper, convert::Rounding::up);
  }

  void operator()(std::vector<Convergent> const& convergents) const {
    auto& list = object["convergents"] = ordered_json::array();
    for (auto const& [value, side, distance] : convergents)
      list.push_back({{"value", number(value, convert::Rounding::nearest)},
                      {"side", side},
                      {"distance", number(distance, convert::Rounding::nearest)}});
  }

 private:
  ordered_json number(QNumber const& q, convert::Rounding rounding) const {
    auto text = to_string(q);
    auto const slash = std::min(text.find('/'), text.size());
    ordered_json parts = {{"numerator", text.substr(0, slash)},
                          {"denominator", slash < text.size() ? text.substr(slash + 1) : "1"}};
    if (with_decimals) parts["decimal"] = convert::to_decimal(q, places, rounding);
    return parts;
  }

  unsigned places;
  bool with_decimals;
  ordered_json& object;
};

std::string dump(ordered_json const& object) {
  return object.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

}  // namespace

unsigned places_of(Query const& query, Style const& style) {
  if (style.format == Format::fraction) return 0;
  if (style.places) return *style.places;
  bool const by_digits = signature_of(query.function).count == "DIGITS";
  return by_digits ? std::min(query.count, UINT_MAX - 2) + 2 : 20;
}

std::string to_text(Query const& query, Answer const& answer, Style const& style,
                    std::string_view separator, std::string_view between) {
  return std::visit(Writer(query, style, separator, between), answer);
}

std::string to_json(std::string_view query_text, Query const& query, Answer const& answer,
                    Style const& style) {
  ordered_json object = {{"query", query_text}};
  std::visit(JsonWriter(query, style, object), answer);
  return dump(object);
}

std::string to_json(std::string_view query_text, Refusal const& refusal) {
  return dump({{"query", query_text},
               {"error", {{"column", refusal.column}, {"message", refusal.reason}}}});
}

}  // namespace zelk::cli
