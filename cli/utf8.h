#pragma once

#include <cstddef>
#include <string_view>

namespace zelk::cli {

/// The first character of a text in UTF-8, or the bytes at its beginning that are none.
struct Character {
  std::string_view bytes;
  bool is_valid;
};

/// The first character of a text that is not empty. What is no UTF-8 is taken as far as it could
/// still have become a character, as Unicode recommends for its replacement.
inline Character first_character(std::string_view text) {
  auto const byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  unsigned const lead = byte(0);
  if (lead < 0x80) return {text.substr(0, 1), true};
  std::size_t const length = lead < 0xc2 || lead > 0xf4 ? 1 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
  // Which second bytes there are: no longer form than needed, no surrogates, no more than 10ffff.
  unsigned low = 0x80;
  unsigned high = 0xbf;
  if (lead == 0xe0) low = 0xa0;
  if (lead == 0xed) high = 0x9f;
  if (lead == 0xf0) low = 0x90;
  if (lead == 0xf4) high = 0x8f;
  std::size_t size = 1;
  for (; size < length && size < text.size() && byte(size) >= low && byte(size) <= high; ++size) {
    low = 0x80;
    high = 0xbf;
  }
  return {text.substr(0, size), size == length && length > 1};
}

}  // namespace zelk::cli
