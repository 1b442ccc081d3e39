#pragma once

#include <algorithm>
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

/// Its code point. Requires: it is one, of more than one byte.
inline char32_t code_point(Character const& character) {
  // The lead byte begins with as many ones as there are bytes.
  char32_t code = 0;
  for (char const c : character.bytes) code = code << 6 | (static_cast<unsigned char>(c) & 0x3f);
  return code & ((char32_t{1} << (5 * character.bytes.size() + 1)) - 1);
}

/// Whether a character shows nothing of itself, or turns the direction of what stands around it: a
/// text with it is not what it seems. By Unicode's default ignorable code points, separators of
/// lines, and marks of annotations.
inline bool is_deceptive(Character const& character) {
  static constexpr struct {
    char32_t first, last;
  } ranges[] = {{0xad, 0xad},      {0x34f, 0x34f},   {0x61c, 0x61c},     {0x115f, 0x1160},
                {0x17b4, 0x17b5},  {0x180b, 0x180f}, {0x200b, 0x200f},   {0x2028, 0x202e},
                {0x2060, 0x206f},  {0x3164, 0x3164}, {0xfe00, 0xfe0f},   {0xfeff, 0xfeff},
                {0xffa0, 0xffa0},  {0xfff0, 0xfffb}, {0x1bca0, 0x1bca3}, {0x1d173, 0x1d17a},
                {0xe0000, 0xe0fff}};
  if (!character.is_valid || character.bytes.size() == 1) return false;
  auto const code = code_point(character);
  return std::ranges::any_of(
      ranges, [code](auto const& range) { return range.first <= code && code <= range.last; });
}

}  // namespace zelk::cli
