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

/// Gives `put` the pieces of a JSON string, with its quotes. Bytes that are no UTF-8 are replaced.
/// Allocates nothing.
template <class Put>
void write_json_string(std::string_view text, Put put) {
  constexpr std::string_view special = "\"\\\b\f\n\r\t";
  constexpr std::string_view names = "\"\\bfnrt";
  constexpr char digits[] = "0123456789abcdef";
  put("\"");
  while (!text.empty()) {
    auto const [bytes, is_valid] = first_character(text);
    text.remove_prefix(bytes.size());
    auto const c = static_cast<unsigned char>(bytes.front());
    if (auto const at = special.find(bytes.front()); at != std::string_view::npos) {
      put("\\");
      put(names.substr(at, 1));
    } else if (c < ' ') {
      char const escape[] = {'\\', 'u', '0', '0', digits[c / 16], digits[c % 16]};
      put(std::string_view(escape, sizeof escape));
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
