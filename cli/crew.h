#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <thread>
#include <vector>

#include "cli/answers.h"

namespace zelk::cli {

/// Workers that answer items side by side, each with approximators and kept answers of its own.
/// Equal queries go to the same worker. The caller, one thread, gets the items back in their order.
///
/// Bounded are the items under way, what their texts take, and what answers wait to be taken.
class Crew {
 public:
  /// Starts as many workers as wanted, or as many as the system lets start.
  Crew(Settings const& settings, unsigned wanted);
  Crew(Crew const&) = delete;
  Crew& operator=(Crew const&) = delete;

  /// Waits for the workers. Requires: all items are back.
  ~Crew();

  bool has_workers() const { return !workers.empty(); }
  bool is_empty() const { return first == last; }
  bool is_full() const { return last - first == capacity || bytes_under_way > most_bytes; }

  /// A place for the next item, whose query is to be entered. Requires: not full.
  Item& next_item() { return seats[last % capacity].item; }

  /// Passes it on, at the latest with the next call of `hand_out` or `first_item`.
  void accept();
  void hand_out();

  /// The item that came first, once it is done. Requires: not empty.
  Item& first_item();
  void release_first();

 private:
  static constexpr std::size_t capacity = 4096;
  static constexpr std::size_t most_bytes = std::size_t{1} << 25;
  static constexpr std::size_t group = 64;

  struct Seat {
    Item item;
    std::size_t number = 0;  // among all items
    std::atomic<bool> is_done = false;
  };

  class Worker;

  std::vector<Seat> seats{capacity};
  std::vector<std::unique_ptr<Worker>> workers;
  std::size_t first = 0;
  std::size_t last = 0;
  std::size_t handed_out = 0;
  std::size_t bytes_under_way = 0;
  std::atomic<std::size_t> taken = 0;          // how many items are back
  std::atomic<std::size_t> bytes_waiting = 0;  // of answers
};

}  // namespace zelk::cli
