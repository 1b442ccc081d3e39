#pragma once

#include <charconv>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

#include "cli/utf8.h"

namespace zelk::cli {

/// A whole number as text, without an allocation.
class Decimal {
 public:
  explicit Decimal(std::size_t value) : end(std::to_chars(text, std::end(text), value).ptr) {}
  Decimal(Decimal const&) = delete;
  Decimal& operator=(Decimal const&) = delete;
  ~Decimal() = default;
  operator std::string_view() const { return {text, end}; }

 private:
  char text[24];
  char const* end;
};

template <class Put>
void put_escaped(char16_t unit, Put put) {
  constexpr char digits[] = "0123456789abcdef";
  char const escape[] = {'\\',
                         'u',
                         digits[unit >> 12],
                         digits[unit >> 8 & 15],
                         digits[unit >> 4 & 15],
                         digits[unit & 15]};
  put(std::string_view(escape, sizeof escape));
}

/// Gives `put` the pieces of a JSON string, with its quotes. Bytes that are no UTF-8 are replaced,
/// and what is deceptive is escaped. Allocates nothing.
template <class Put>
void write_json_string(std::string_view text, Put put) {
  constexpr std::string_view special = "\"\\\b\f\n\r\t";
  constexpr std::string_view names = "\"\\bfnrt";
  put("\"");
  while (!text.empty()) {
    auto const character = first_character(text);
    auto const& [bytes, is_valid] = character;
    text.remove_prefix(bytes.size());
    auto const c = static_cast<unsigned char>(bytes.front());
    if (auto const at = special.find(bytes.front()); at != std::string_view::npos) {
      put("\\");
      put(names.substr(at, 1));
    } else if (c < ' ') {
      put_escaped(c, put);
    } else if (is_deceptive(character)) {
      // Beyond 16 bits as two surrogates.
      auto const code = code_point(character);
      if (code >= 0x10000) put_escaped(static_cast<char16_t>(0xd7c0 + (code >> 10)), put);
      put_escaped(static_cast<char16_t>(code < 0x10000 ? code : 0xdc00 + (code & 0x3ff)), put);
    } else {
      put(is_valid ? bytes : "\xef\xbf\xbd");
    }
  }
  put("\"");
}

inline void append_json_string(std::string& to, std::string_view text) {
  write_json_string(text, [&](std::string_view piece) { to += piece; });
}

}  // namespace zelk::cli
