#include "cli/lines.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace zelk::cli {
namespace {

[[noreturn]] void fail(std::string const& name) {
  throw std::system_error(errno, std::generic_category(), "cannot read " + name);
}

}  // namespace

Lines::Lines(std::string file_name)
    : name(std::move(file_name)),
      descriptor(name == "-" ? STDIN_FILENO : open(name.c_str(), O_RDONLY | O_CLOEXEC)) {
  if (descriptor < 0) fail(name);
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

/// What could be read, nothing at the end of the file.
std::string_view Lines::read(char* target, std::size_t size) {
  auto const count = ::read(descriptor, target, size);
  if (count < 0) fail(name);
  return {target, static_cast<std::size_t>(count)};
}

/// Reads on, up to the end that a line of `capacity` bytes would have.
bool Lines::extend() {
  auto const size = unread.size();
  std::memmove(buffer.get(), unread.data(), size);
  auto const more = read(buffer.get() + size, std::min(block, capacity + 1 - size));
  unread = {buffer.get(), size + more.size()};
  return !more.empty();
}

void Lines::skip_rest() {
  cut = true;
  line = unread;
  for (;;) {
    unread = read(buffer.get() + capacity + 1, block);
    if (unread.empty()) return;
    if (auto const end = unread.find('\n'); end != std::string_view::npos)
      return unread.remove_prefix(end + 1);
  }
}

}  // namespace zelk::cli
