#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

/// What goes to standard output and to standard error.
namespace zelk::cli {

/// Results. Throws: std::system_error when they cannot be written.
void print(std::string_view text);
void flush_output();

/// A diagnostic of one line, `zelk: ...`, after all answers so far; the name in colour on a
/// terminal, unless NO_COLOR is set. ASCII control characters are shown as `\x..`. When the answers
/// cannot be written, whoever prints or flushes next is told.
void complain(std::string_view message);

/// A line on standard error that tells how far a long run has got: not within the first second, and
/// only on a terminal that does not get the answers too.
class Progress {
 public:
  Progress() = default;
  Progress(Progress const&) = delete;
  Progress& operator=(Progress const&) = delete;
  ~Progress();

  void show(std::size_t lines, std::size_t answered_before);

 private:
  using Clock = std::chrono::steady_clock;

  static bool is_wanted();

  bool const wanted = is_wanted();
  Clock::time_point next = Clock::now() + std::chrono::seconds(1);
};

}  // namespace zelk::cli
