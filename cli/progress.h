#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <span>
#include <thread>

namespace zelk::cli {

/// A line on standard error that tells what a long run does and how far it has got. It appears
/// after one second, if standard error is a terminal, and goes before anything else is written
/// there.
class Progress {
 public:
  /// Writes the line, without its end, and returns its length. Called by a thread of its own.
  using Describe = std::function<int(std::span<char> line, long seconds)>;

  explicit Progress(Describe what);
  Progress(Progress const&) = delete;
  Progress& operator=(Progress const&) = delete;
  ~Progress();  // erases the line

 private:
  void run();

  Describe describe;
  std::mutex mutex;
  std::condition_variable ended;
  bool is_over = false;
  std::thread thread;
};

}  // namespace zelk::cli
