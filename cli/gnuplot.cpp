#include "cli/gnuplot.h"

#include <sys/wait.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "cli/query.h"
#include "cli/terminal.h"
#include "zelk/convert/text.h"

namespace zelk::cli {
namespace {

[[noreturn]] void fail(int reason, std::string const& what) {
  throw std::system_error(reason, std::generic_category(), what);
}

/// A new folder that goes, with all in it, when this does.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    if (mkdtemp(path.data()) == nullptr) fail(errno, "cannot write " + path);
  }
  TemporaryFolder(TemporaryFolder const&) = delete;
  TemporaryFolder& operator=(TemporaryFolder const&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }

  std::string const& name() const { return path; }

 private:
  static std::string place() {
    char const* const chosen = std::getenv("TMPDIR");
    return chosen != nullptr && *chosen != '\0' ? chosen : "/tmp";
  }

  std::string path = place() + "/zelk-plot-XXXXXX";
};

void write(std::string const& text, std::string const& file) {
  std::FILE* const output = std::fopen(file.c_str(), "w");
  if (output == nullptr) fail(errno, "cannot write " + file);
  errno = 0;
  bool complete = std::fwrite(text.data(), 1, text.size(), output) == text.size();
  int const reason = errno;
  if (std::fclose(output) != 0) complete = false;
  if (!complete) fail(reason != 0 ? reason : errno, "cannot write " + file);
}

/// The last line of the file that is not blank.
std::string last_line(std::string const& file) {
  std::ifstream input(file);
  std::string last;
  for (std::string line; std::getline(input, line);)
    if (line.find_first_not_of(" \t") != std::string::npos) last = line;
  return last;
}

std::string drawn(std::string const& script) {
  TemporaryFolder const folder;
  write(script, folder.name() + "/script");

  // The shell gets no name but this one's.
  setenv("ZELK_PLOT", folder.name().c_str(), 1);
  std::FILE* const gnuplot = popen(
      "command -v gnuplot >/dev/null || exit 127\n"
      "exec gnuplot -d \"$ZELK_PLOT/script\" 2>\"$ZELK_PLOT/messages\"",
      "r");
  if (gnuplot == nullptr) fail(errno, "cannot start gnuplot");
  std::string image;
  char buffer[4096];
  while (auto const size = std::fread(buffer, 1, sizeof buffer, gnuplot))
    image.append(buffer, size);
  int const status = pclose(gnuplot);
  if (WIFEXITED(status) && WEXITSTATUS(status) == 127)
    fail(ENOENT, "plots need gnuplot, which cannot be found");
  if (status != 0 || image.find("</svg>") == std::string::npos)
    throw Refusal(Refusal::Kind::unanswerable, 1, "",
                  "gnuplot failed: " + convert::quoted(last_line(folder.name() + "/messages")));
  return image;
}

}  // namespace

void draw_by_gnuplot(std::string const& script, std::string const& file) {
  auto const image = drawn(script);
  file == "-" ? print(image) : write(image, file);
}

}  // namespace zelk::cli
