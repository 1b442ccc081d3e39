#include "cli/lines.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "cli/output.h"

namespace zelk::cli {
namespace {

[[noreturn]] void fail(std::string const& name) {
  throw std::system_error(errno, std::generic_category(), "cannot read " + name);
}

}  // namespace

Lines::Lines(std::string file_name, std::function<bool()> before_waiting)
    : name(std::move(file_name)),
      prepare_to_wait(std::move(before_waiting)),
      descriptor(name == "-" ? STDIN_FILENO : open(name.c_str(), O_RDONLY)) {
  struct stat file;
  if (descriptor < 0 || fstat(descriptor, &file) != 0) fail(name);
  // What is printed would be read in its turn, without end.
  if (is_standard_output(file)) {
    errno = EDEADLK;
    fail(name + ", which is the output as well");
  }
}

Lines::~Lines() {
  if (descriptor != STDIN_FILENO) close(descriptor);
}

bool Lines::next() {
  cut = false;
  for (std::size_t searched = 0;;) {
    if (auto const end = unread.find('\n', searched); end != std::string_view::npos) {
      line = unread.substr(0, end);
      unread.remove_prefix(end + 1);
      return true;
    }
    searched = unread.size();
    if (searched > capacity) {
      skip_rest();
      return true;
    }
    if (!extend()) {
      line = unread;
      unread.remove_prefix(line.size());
      return !line.empty();
    }
  }
}

/// Reads at most `size` bytes; returns none at the end of the file. A descriptor that does not wait
/// by itself may have nothing after all, if others read from it too.
std::string_view Lines::read(char* target, std::size_t size) {
  pollfd wanted = {descriptor, POLLIN, 0};
  for (;;) {
    if (poll(&wanted, 1, 0) == 0) {
      if (!prepare_to_wait()) return {};
      poll(&wanted, 1, -1);
    }
    auto const count = ::read(descriptor, target, size);
    if (count >= 0) return {target, static_cast<std::size_t>(count)};
    if (errno != EAGAIN && errno != EWOULDBLOCK) fail(name);
  }
}

/// Moves the unread bytes to the beginning of the buffer and reads more behind them, at most so
/// many that a line of `capacity` bytes and its line end fit. False at the end of the file.
bool Lines::extend() {
  auto const size = unread.size();
  std::memmove(buffer.get(), unread.data(), size);
  auto const more = read(buffer.get() + size, std::min(block, capacity + 1 - size));
  unread = {buffer.get(), size + more.size()};
  return !more.empty();
}

/// Keeps what is unread as the beginning of a line, and drops the rest of that line.
void Lines::skip_rest() {
  line = unread;
  bool is_comment = line.find('#') != std::string_view::npos;
  auto const look_at = [&](std::string_view dropped) {
    auto const first = dropped.find_first_not_of(" \t\r");
    if (is_comment || first == std::string_view::npos) return;
    is_comment = dropped[first] == '#';
    cut = cut || !is_comment;
  };
  look_at(line.substr(capacity));
  for (;;) {
    unread = read(buffer.get() + capacity + 1, block);
    auto const end = unread.find('\n');
    look_at(unread.substr(0, end));
    if (unread.empty()) return;
    if (end != std::string_view::npos) return unread.remove_prefix(end + 1);
  }
}

}  // namespace zelk::cli
