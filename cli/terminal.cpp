#include "cli/terminal.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace zelk::cli {
namespace {

/// Whether the cursor stands behind a line of progress.
bool progress_shown = false;

void erase_progress() {
  if (std::exchange(progress_shown, false)) std::fputs("\r\033[K", stderr);
}

/// Why some results could not be written, while that could not be told.
int lost = 0;

[[noreturn]] void fail(int reason) {
  throw std::system_error(reason, std::generic_category(), "cannot write to standard output");
}

}  // namespace

void print(std::string_view text) {
  if (lost != 0) fail(lost);
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) fail(errno);
}

void flush_output() {
  if (lost != 0) fail(lost);
  if (std::fflush(stdout) != 0) fail(errno);
}

void complain(std::string_view message) {
  char const* const no_color = std::getenv("NO_COLOR");
  bool const coloured = isatty(STDERR_FILENO) != 0 && (no_color == nullptr || *no_color == '\0');
  std::string line = coloured ? "\033[1;31mzelk:\033[0m " : "zelk: ";
  for (char const c : message) {
    bool const is_control = (c >= 0 && c < ' ') || c == 0x7f;
    constexpr char digits[] = "0123456789abcdef";
    if (is_control)
      line += {'\\', 'x', digits[c / 16], digits[c % 16]};
    else
      line += c;
  }
  line += '\n';
  if (std::fflush(stdout) != 0 && lost == 0) lost = errno;
  erase_progress();
  std::fwrite(line.data(), 1, line.size(), stderr);
}

bool Progress::is_wanted() { return isatty(STDERR_FILENO) != 0 && isatty(STDOUT_FILENO) == 0; }

Progress::~Progress() { erase_progress(); }

void Progress::show(std::size_t lines, std::size_t answered_before) {
  if (!wanted) return;
  auto const now = Clock::now();
  if (now < next) return;
  next = now + std::chrono::milliseconds(200);
  progress_shown = true;
  std::fprintf(stderr, "\r\033[K%zu lines, %zu answered before", lines, answered_before);
  std::fflush(stderr);
}

}  // namespace zelk::cli
