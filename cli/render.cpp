#include "cli/render.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "cli/json.h"
#include "zelk/convert/decimal.h"
#include "zelk/convert/text.h"

namespace zelk::cli {
namespace {

using convert::to_string;

/// In ascending order: the companion bounds of exp need not be.
Bounds ascending(Bounds const& bounds) {
  return bounds.second < bounds.first ? Bounds(bounds.second, bounds.first) : bounds;
}

/// Writes one answer as text.
struct Writer {
  unsigned places;
  bool is_scientific;
  Format format;
  std::string_view separator;
  std::string_view between;

  /// In the usual notation, `[4; 2, 6, 7]`. The library gives zero no terms; here it gets the term
  /// 0, as other integers have themselves.
  std::string operator()(Terms const& terms) const {
    if (terms.empty()) return "[0]";
    std::string text = "[" + to_string(terms.front());
    for (std::size_t i = 1; i < terms.size(); ++i)
      text += (i == 1 ? "; " : ", ") + to_string(terms[i]);
    return text + "]";
  }

  std::string operator()(QNumber const& value) const {
    return joined(to_string(value), [&] { return decimal(value); });
  }

  std::string operator()(Bounds const& bounds) const {
    return joined(to_string(bounds.first) + std::string(separator) + to_string(bounds.second),
                  [&] { return decimals(bounds); });
  }

  std::string operator()(Evaluation const& evaluation) const { return (*this)(evaluation.bounds); }

  std::string operator()(Relation const& relation) const { return std::string(relation.sign); }

  std::string operator()(std::vector<Convergent> const& convergents) const {
    std::string text;
    for (Convergent const& convergent : convergents) {
      if (!text.empty()) text += between;
      text += all_of(convergent);
    }
    return text;
  }

  std::string operator()(Best const& best) const {
    return format == Format::both ? all_of(best) : (*this)(best.value);
  }

  std::string all_of(Convergent const& convergent) const {
    auto const& [value, side, distance] = convergent;
    bool const fraction = format != Format::decimal;
    std::string text = fraction ? to_string(value) : decimal(value);
    text += ' ' + std::string(side) + ' ';
    text += fraction ? to_string(distance) : decimal(distance);
    if (format == Format::both) text += ' ' + decimal(value) + ' ' + decimal(distance);
    return text;
  }

  std::string decimal(QNumber const& value) const {
    return convert::to_decimal(value, places, convert::Rounding::nearest);
  }

  std::string decimals(Bounds const& bounds) const {
    return is_scientific ? convert::to_scientific(bounds, places)
                         : convert::to_decimal(bounds, places);
  }

  /// Decimals are made where they are printed only: otherwise there are no places for them.
  template <class MakeDecimal>
  std::string joined(std::string fraction, MakeDecimal const& make_decimal) const {
    if (format == Format::fraction) return fraction;
    if (format == Format::decimal) return make_decimal();
    return fraction.append(separator) + make_decimal();
  }
};

/// Appends the parts of one answer to an object. Numbers as strings: a JSON number would be rounded
/// by whoever reads it.
struct JsonWriter {
  unsigned places;
  bool is_scientific;
  Format format;
  std::string& object;

  void operator()(Terms const& terms) const {
    object += R"(,"terms":[)";
    for (std::size_t i = 0; i < terms.size(); ++i) {
      if (i != 0) object += ',';
      object += '"' + to_string(terms[i]) + '"';
    }
    object += terms.empty() ? R"("0"])" : "]";
  }

  void operator()(QNumber const& value) const {
    append(R"(,"value":)", value, convert::Rounding::nearest);
  }

  void operator()(Bounds const& bounds) const {
    auto const [lower, upper] = ascending(bounds);
    append(R"(,"lower":)", lower, convert::Rounding::down);
    append(R"(,"upper":)", upper, convert::Rounding::up);
  }

  void operator()(Evaluation const& evaluation) const {
    (*this)(evaluation.bounds);
    if (!evaluation.is_narrow) object += R"(,"narrow":false)";
  }

  void operator()(Relation const& relation) const {
    object.append(R"(,"relation":")").append(relation.sign) += '"';
  }

  void operator()(std::vector<Convergent> const& convergents) const {
    char const* before = R"(,"convergents":[{)";
    for (Convergent const& convergent : convergents) {
      object += before;
      append_all(convergent);
      before = "},{";
    }
    object += "}]";
  }

  void operator()(Best const& best) const {
    if (format != Format::both) return (*this)(best.value);
    object += ',';
    append_all(best);
  }

  void append_all(Convergent const& convergent) const {
    append(R"("value":)", convergent.value, convert::Rounding::nearest);
    object.append(R"(,"side":")").append(convergent.side) += '"';
    append(R"(,"distance":)", convergent.distance, convert::Rounding::nearest);
  }

  void append(char const* member, QNumber const& q, convert::Rounding rounding) const {
    auto const text = to_string(q);
    std::string_view const parts = text;
    auto const slash = std::min(parts.find('/'), parts.size());
    object.append(member).append(R"({"numerator":")").append(parts.substr(0, slash));
    object.append(R"(","denominator":")");
    object += slash < parts.size() ? parts.substr(slash + 1) : "1";
    if (format != Format::fraction)
      object.append(R"(","decimal":")")
          .append(is_scientific ? convert::to_scientific(q, places, rounding)
                                : convert::to_decimal(q, places, rounding));
    object += R"("})";
  }
};

}  // namespace

std::optional<unsigned> places_of(Query const& query, Style const& style) {
  if (style.format == Format::fraction || style.format == Format::coq) return std::nullopt;
  if (style.places) return std::max(*style.places, query.relative != 0 ? 1U : 0U);
  if (!query.digits) return places_without_digits;
  return std::min(*query.digits, UINT_MAX - places_beyond_digits) + places_beyond_digits;
}

std::string to_text(Query const& query, Answer const& answer, Style const& style,
                    std::string_view separator, std::string_view between) {
  return std::visit(
      Writer{query.places.value_or(0), query.relative != 0, style.format, separator, between},
      answer);
}

namespace {

/// Whether an answer that is not 0 is shown by decimals that are all 0.
bool shows_only_zeros(Query const& query, Answer const& answer) {
  if (!query.places || query.relative != 0) return false;
  auto const vanishes = [places = *query.places](QNumber const& q) {
    if (q.is_zero()) return true;
    // Most numbers are at least 8^-places, by their sizes alone.
    if (mpz_sizeinbase(q.numerator(), 2) + std::size_t{3} * places >
        mpz_sizeinbase(q.denominator(), 2))
      return false;
    if (QNumber const size = abs(q); size < 1)
      return convert::to_decimal(size, places, convert::Rounding::down).find_first_not_of("0.") ==
             std::string::npos;
    return false;
  };
  auto const all_vanish = [&](QNumber const& a, QNumber const& b) {
    return !(a.is_zero() && b.is_zero()) && vanishes(a) && vanishes(b);
  };
  if (auto const* const value = std::get_if<QNumber>(&answer)) return all_vanish(*value, *value);
  if (auto const* const best = std::get_if<Best>(&answer))
    return all_vanish(best->value, best->value);
  auto const* const evaluation = std::get_if<Evaluation>(&answer);
  auto const* const bounds =
      evaluation != nullptr ? &evaluation->bounds : std::get_if<Bounds>(&answer);
  return bounds != nullptr && all_vanish(bounds->first, bounds->second);
}

}  // namespace

char const* note_on(Query const& query, Answer const& answer) {
  if (auto const* const found = std::get_if<Evaluation>(&answer); found && !found->is_narrow)
    return "wider than asked for: an interval in the expression is so wide, or its value too near "
           "0";
  return shows_only_zeros(query, answer)
             ? "all digits shown are zeros; --digits-out or more DIGITS may show others"
             : nullptr;
}

std::string to_output(std::string_view query_text, Query const& query, Answered const& answered,
                      Style const& style, std::string_view separator, std::string_view between) {
  auto const& [answer, proof] = answered;
  if (!style.json) return proof.empty() ? to_text(query, answer, style, separator, between) : proof;
  auto const object = to_json(query_text, query, answer, style);
  return proof.empty() ? object : object + '\n' + proof;
}

std::string to_json(std::string_view query_text, Query const& query, Answer const& answer,
                    Style const& style) {
  std::string object = R"({"query":)";
  append_json_string(object, query_text);
  std::visit(JsonWriter{query.places.value_or(0), query.relative != 0, style.format, object},
             answer);
  return object += '}';
}

}  // namespace zelk::cli
