#include "cli/progress.h"

#include <algorithm>
#include <chrono>
#include <string_view>
#include <system_error>
#include <utility>

#include "cli/output.h"
#include "cli/terminal.h"

namespace zelk::cli {

Progress::Progress(Describe what) : describe(std::move(what)) {
  if (!is_capable_terminal()) return;
  try {
    thread = thread_without_signals([this] { run(); });
  } catch (std::system_error const&) {
    // Where there are no more threads, the work is done without a word.
  }
}

Progress::~Progress() {
  if (!thread.joinable()) return;
  {
    std::lock_guard const lock(mutex);
    is_over = true;
  }
  ended.notify_one();
  thread.join();
  Screen const erased;
}

void Progress::run() {
  auto const begin = std::chrono::steady_clock::now();
  auto next = begin + std::chrono::seconds(1);
  std::unique_lock lock(mutex);
  while (!ended.wait_until(lock, next, [this] { return is_over; })) {
    char line[80];  // fits on any screen
    auto const seconds = std::chrono::floor<std::chrono::seconds>(next - begin).count();
    int const size = describe(line, static_cast<long>(seconds));
    Screen const screen;
    screen.show({line, std::clamp<std::size_t>(static_cast<std::size_t>(std::max(size, 0)), 0,
                                               sizeof line - 1)});
    next += std::chrono::milliseconds(200);
  }
}

}  // namespace zelk::cli
