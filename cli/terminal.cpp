#include "cli/terminal.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace zelk::cli {
namespace {

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
  static bool const coloured = isatty(STDERR_FILENO) != 0 && (std::getenv("NO_COLOR") == nullptr ||
                                                              *std::getenv("NO_COLOR") == '\0');
  std::string line = coloured ? "\r\033[K\033[1;31mzelk:\033[0m " : "zelk: ";
  line.append(message) += '\n';
  std::fwrite(line.data(), 1, line.size(), stderr);
}

bool Progress::is_terminal() { return isatty(STDERR_FILENO) != 0; }

Progress::~Progress() {
  if (shown) std::fputs("\r\033[K", stderr);
}

void Progress::show(std::size_t lines, std::size_t answered_before) {
  if (!wanted) return;
  auto const now = Clock::now();
  if (now < next) return;
  next = now + std::chrono::milliseconds(200);
  shown = true;
  std::fprintf(stderr, "\r\033[K%zu lines, %zu answered before", lines, answered_before);
  std::fflush(stderr);
}

}  // namespace zelk::cli
