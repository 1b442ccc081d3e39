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

[[noreturn]] void fail() {
  throw std::system_error(errno, std::generic_category(), "cannot write to standard output");
}

}  // namespace

void print(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) fail();
}

void flush_output() {
  if (std::fflush(stdout) != 0) fail();
}

void complain(std::string_view message) {
  char const* const no_color = std::getenv("NO_COLOR");
  bool const coloured = isatty(STDERR_FILENO) != 0 && (no_color == nullptr || *no_color == '\0');
  std::string line = coloured ? "\033[1;31mzelk:\033[0m " : "zelk: ";
  line.append(message) += '\n';
  std::fflush(stdout);
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
