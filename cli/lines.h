#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace zelk::cli {

/// Reads a file line by line through a buffer of fixed size.
class Lines {
 public:
  /// A longer line, in bytes without its end, is cut: only its beginning can be seen.
  static constexpr std::size_t capacity = std::size_t{1} << 24;

  /// Opens the file of that name; `-` is standard input. Before it waits for input, `next` calls
  /// `before_waiting`: the other end of a pipe may be waiting for an answer before it writes on. If
  /// that returns false, the file ends here.
  /// Throws: std::system_error when it cannot be read; so does `next`.
  Lines(std::string file_name, std::function<bool()> before_waiting);
  Lines(Lines const&) = delete;
  Lines& operator=(Lines const&) = delete;
  ~Lines();

  /// Goes to the next line; false at the end of the file. The last line may lack its line end.
  bool next();

  /// The line without its line end; valid until the next call of `next`.
  std::string_view text() const { return line; }

  /// Whether the line is longer than `text()` by more than blanks and a comment.
  bool is_cut() const { return cut; }

 private:
  static constexpr std::size_t block = std::size_t{1} << 16;

  std::string_view read(char* target, std::size_t size);
  bool extend();
  void skip_rest();

  std::string name;
  std::function<bool()> prepare_to_wait;
  int descriptor;
  // Holds the longest line with its line end, and behind it one block: there the rest of a line
  // that is cut is read and dropped.
  std::unique_ptr<char[]> buffer{new char[capacity + 1 + block]};
  std::string_view line;
  std::string_view unread{buffer.get(), 0};  // in the buffer, behind the line
  bool cut = false;
};

}  // namespace zelk::cli
