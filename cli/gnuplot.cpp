#include "cli/gnuplot.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>

#include "cli/output.h"
#include "cli/query.h"
#include "cli/whole_file.h"
#include "zelk/convert/text.h"

namespace zelk::cli {
namespace {

[[noreturn]] void fail(int reason, std::string const& what) {
  throw std::system_error(reason, std::generic_category(), what);
}

/// A new file in TMPDIR or else in /tmp, without a name: nothing can be left of it.
class TemporaryFile {
 public:
  TemporaryFile() {
    char const* const chosen = std::getenv("TMPDIR");
    std::string path = chosen != nullptr && *chosen != '\0' ? chosen : "/tmp";
    path += "/zelk-plot-XXXXXX";
    SignalsBlocked const blocked;
    descriptor = mkostemp(path.data(), O_CLOEXEC);
    if (descriptor < 0) fail(errno, "cannot write " + path);
    unlink(path.c_str());
  }
  TemporaryFile(TemporaryFile const&) = delete;
  TemporaryFile& operator=(TemporaryFile const&) = delete;
  ~TemporaryFile() { close(descriptor); }

  int descriptor;
};

/// All of a file from its beginning, or all that comes out of a pipe.
std::string read_all(int file) {
  std::string text;
  char buffer[4096];
  for (;;) {
    auto const size = read(file, buffer, sizeof buffer);
    if (size > 0) text.append(buffer, static_cast<std::size_t>(size));
    if (size == 0 || (size < 0 && errno != EINTR)) return text;
  }
}

/// The last line that is not blank.
std::string last_line(std::string_view text) {
  auto const end = text.find_last_not_of(" \t\n");
  if (end == std::string_view::npos) return {};
  text = text.substr(0, text.find('\n', end));
  return std::string(text.substr(text.rfind('\n') + 1));
}

/// Runs gnuplot on a script. Gnuplot itself reads no file but its standard input.
std::string drawn(std::string const& script) {
  TemporaryFile const input, messages;
  if (!write_all(input.descriptor, script) || lseek(input.descriptor, 0, SEEK_SET) != 0)
    fail(errno, "cannot write a temporary file");
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) fail(errno, "cannot start gnuplot");
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, input.descriptor, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&files, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&files, messages.descriptor, STDERR_FILENO);
  char name[] = "gnuplot";
  char option[] = "-d";
  char* const arguments[] = {name, option, nullptr};
  pid_t gnuplot;
  int const error = posix_spawnp(&gnuplot, name, &files, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&files);
  close(ends[1]);
  if (error != 0) {
    close(ends[0]);
    if (error == ENOENT) fail(error, "plots need gnuplot, which cannot be found");
    fail(error, "cannot start gnuplot");
  }
  std::string image = read_all(ends[0]);
  close(ends[0]);
  int status = 0;
  while (waitpid(gnuplot, &status, 0) < 0 && errno == EINTR) {
  }
  lseek(messages.descriptor, 0, SEEK_SET);
  if (status != 0 || image.find("</svg>") == std::string::npos)
    throw Refusal(Refusal::Kind::unanswerable,
                  "gnuplot failed: " + convert::quoted(last_line(read_all(messages.descriptor))));
  return image;
}

}  // namespace

void draw_by_gnuplot(std::string const& script, std::string const& file) {
  auto const image = drawn(script);
  file == "-" ? put(image) : write_whole_file(file, image);
}

}  // namespace zelk::cli
