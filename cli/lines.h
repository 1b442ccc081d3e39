#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace zelk::cli {

/// The lines of a file, one after the other, in memory that does not grow.
class Lines {
 public:
  /// Bytes of the longest line that is read as a whole.
  static constexpr std::size_t capacity = std::size_t{1} << 24;

  /// Of the file of that name, or of standard input if that is `-`.
  /// Throws: std::system_error when it cannot be read; so does `next`.
  explicit Lines(std::string file_name);
  Lines(Lines const&) = delete;
  Lines& operator=(Lines const&) = delete;
  ~Lines();

  /// Whether there is one more line. The last one may lack its end.
  bool next();

  /// The line without its end; good until the next.
  std::string_view text() const { return line; }

  /// Whether `text()` is only the beginning of a longer line.
  bool is_cut() const { return cut; }

  /// Whether the whole next line was read already. If not, whoever feeds a pipe may be waiting for
  /// an answer before writing on.
  bool are_at_hand() const { return unread.find('\n') != std::string_view::npos; }

 private:
  static constexpr std::size_t block = std::size_t{1} << 16;

  std::string_view read(char* target, std::size_t size);
  bool extend();
  void skip_rest();

  std::string name;
  int descriptor;
  // A line with its end, and room to read over the rest of a longer one.
  std::unique_ptr<char[]> buffer{new char[capacity + 1 + block]};
  std::string_view line;
  std::string_view unread{buffer.get(), 0};
  bool cut = false;
};

}  // namespace zelk::cli
