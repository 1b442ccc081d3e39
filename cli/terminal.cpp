#include "cli/terminal.h"

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "cli/output.h"
#include "cli/utf8.h"

namespace zelk::cli {
namespace {

std::mutex screen;

/// Whether the cursor stands at the end of a line of progress.
std::atomic<bool> progress_shown = false;

/// Collects a line, so that it reaches standard error in one piece unless it is very long.
class ErrorLine {
 public:
  void add(std::string_view text) {
    for (char const c : text) {
      if (size == sizeof buffer) send();
      buffer[size++] = c;
    }
  }

  /// With everything that a terminal would interpret, or not show, as an escape.
  void add_harmless(std::string_view text) {
    constexpr char digits[] = "0123456789abcdef";
    while (!text.empty()) {
      auto const first = first_character(text);
      std::string_view const bytes = first.bytes;
      text.remove_prefix(bytes.size());
      auto const byte = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
      // U+0080 to U+009f begin escape sequences as well.
      bool const is_control =
          byte(0) < ' ' || byte(0) == 0x7f || (byte(0) == 0xc2 && first.is_valid && byte(1) < 0xa0);
      if (first.is_valid && !is_control && !is_deceptive(first)) {
        add(bytes);
        continue;
      }
      for (std::size_t i = 0; i < bytes.size(); ++i) {
        char const escape[] = {'\\', 'x', digits[byte(i) / 16], digits[byte(i) % 16]};
        add({escape, sizeof escape});
      }
    }
  }

  void send() {
    write_all(STDERR_FILENO, {buffer, size});
    size = 0;
  }

 private:
  char buffer[4096];
  std::size_t size = 0;
};

}  // namespace

void complain(std::initializer_list<std::string_view> message) noexcept {
  try_to_flush_output();
  Screen const own;
  char const* const no_color = std::getenv("NO_COLOR");
  bool const coloured = (no_color == nullptr || *no_color == '\0') && is_capable_terminal();
  ErrorLine line;
  line.add(coloured ? "\033[1;31mzelk:\033[0m " : "zelk: ");
  for (auto const piece : message) line.add_harmless(piece);
  line.add("\n");
  line.send();
}

bool is_capable_terminal() {
  char const* const type = std::getenv("TERM");
  return isatty(STDERR_FILENO) != 0 && (type == nullptr || std::strcmp(type, "dumb") != 0);
}

Screen::Screen() : lock(screen) { erase_progress_now(); }

void Screen::show(std::string_view progress) const {
  progress_shown = true;
  write_all(STDERR_FILENO, progress);
}

void end_now(int status) noexcept {
  screen.lock();
  erase_progress_now();
  std::_Exit(status);
}

/// Goes to the beginning of the line and clears it.
void erase_progress_now() {
  if (progress_shown.exchange(false)) write_all(STDERR_FILENO, "\r\033[K");
}

}  // namespace zelk::cli
