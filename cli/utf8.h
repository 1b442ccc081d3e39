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

/// Whether a character shows nothing of itself, or turns the direction of what stands around it: a
/// text with it is not what it seems. By Unicode's default ignorable code points, line separators
/// and marks of annotations.
inline bool is_deceptive(Character const& character) {
  static constexpr struct {
    std::string_view first, last;
  } ranges[] = {
      {"\u00ad", "\u00ad"},         {"\u034f", "\u034f"},        {"\u061c", "\u061c"},
      {"\u115f", "\u1160"},         {"\u17b4", "\u17b5"},        {"\u180b", "\u180f"},
      {"\u200b", "\u200f"},         {"\u2028", "\u202e"},        {"\u2060", "\u206f"},
      {"\u3164", "\u3164"},         {"\ufe00", "\ufe0f"},        {"\ufeff", "\ufeff"},
      {"\uffa0", "\uffa0"},         {"\ufff0", "\ufffb"},        {"\U0001bca0", "\U0001bca3"},
      {"\U0001d173", "\U0001d17a"}, {"\U000e0000", "\U000e0fff"}};
  // Bytes in UTF-8 have the order of the characters.
  for (auto const& [first, last] : ranges)
    if (first <= character.bytes && character.bytes <= last) return true;
  return false;
}

}  // namespace zelk::cli
