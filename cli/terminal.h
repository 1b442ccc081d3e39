#pragma once

#include <initializer_list>
#include <mutex>
#include <string_view>

/// What goes to standard error.
namespace zelk::cli {

/// Writes a diagnostic of one line, `zelk: ...`, to standard error, and before it all results
/// printed so far to standard output. On a terminal the name is in colour, unless NO_COLOR is set
/// or the terminal is dumb. What a terminal would interpret, or not show, appears as `\x..`.
///
/// Allocates nothing and does not throw: if the results cannot be written, the next `print` or
/// `flush_output` throws.
void complain(std::initializer_list<std::string_view> message) noexcept;

/// Whether standard error is a terminal that can move its cursor.
bool is_capable_terminal();

/// Whoever writes holds the screen. The line of progress is erased first.
class Screen {
 public:
  Screen();

  /// Writes a line of progress, which the next writer erases.
  void show(std::string_view progress) const;

 private:
  std::lock_guard<std::mutex> lock;
};

/// Ends the command at once, in the middle of whatever other threads do. The line of progress goes.
[[noreturn]] void end_now(int status) noexcept;

/// Erases the line of progress without a lock, for a signal handler.
void erase_progress_now();

}  // namespace zelk::cli
