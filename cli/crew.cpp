#include "cli/crew.h"

#include <unistd.h>

#include <new>
#include <system_error>

#include "cli/output.h"

namespace zelk::cli {

/// Takes its seats out of a ring that has room for all of them, or, when they are back, for the
/// end.
class Crew::Worker {
 public:
  Worker(Crew& its_crew, Settings const& settings, double share)
      : crew(its_crew),
        answers(*this, settings, share),
        thread(thread_without_signals([this] { run(); })) {}
  Worker(Worker const&) = delete;
  Worker& operator=(Worker const&) = delete;
  ~Worker() {
    add(nullptr);
    publish();
    thread.join();
  }

  void add(Seat* seat) { ring[filled++ % ring.size()] = seat; }

  void publish() {
    published.store(filled, std::memory_order_release);
    published.notify_one();
  }

 private:
  /// Where GMP gets no memory, the thread stops for good, and the caller ends the command when all
  /// answers before this one are printed.
  struct OwnAnswers : Answers {
    OwnAnswers(Worker& its_worker, Settings const& its_settings, double bits)
        : Answers(its_settings, bits), worker(its_worker) {}
    void give_up() override {
      worker.current->item.is_last = true;
      worker.finish();
      for (;;) pause();
    }
    Worker& worker;
  };

  void run() {
    for (std::size_t n = 0;; ++n) {
      published.wait(n, std::memory_order_acquire);
      current = ring[n % ring.size()];
      if (current == nullptr) return QNumber::release_scratch();
      // Whoever is too far ahead waits, except for the item that the caller waits for.
      for (auto at = crew.taken.load(); at != current->number && crew.bytes_waiting > most_bytes;
           at = crew.taken.load())
        crew.taken.wait(at);
      answers.answer(current->item);
      finish();
    }
  }

  void finish() {
    crew.bytes_waiting += current->item.answer.size();
    current->is_done.store(true, std::memory_order_release);
    current->is_done.notify_one();
  }

  Crew& crew;
  OwnAnswers answers;
  std::vector<Seat*> ring = std::vector<Seat*>(capacity);
  std::size_t filled = 0;
  std::atomic<std::size_t> published = 0;
  Seat* current = nullptr;
  std::thread thread;
};

Crew::Crew(Settings const& settings, unsigned wanted) {
  workers.reserve(wanted);
  // Where memory is short, half of it is left for the work: as much as a stack for each worker.
  constexpr std::size_t size_of_stack = std::size_t{1} << 23;
  std::vector<std::unique_ptr<char[]>> left_free;
  try {
    while (workers.size() < wanted) {
      left_free.push_back(std::make_unique_for_overwrite<char[]>(size_of_stack));
      workers.push_back(
          std::make_unique<Worker>(*this, settings, settings.limits.max_bits / wanted));
    }
  } catch (std::system_error const&) {
    // As many as the system lets start.
  } catch (std::bad_alloc const&) {
    // As many as there is memory for.
  }
}

Crew::~Crew() = default;

void Crew::accept() {
  auto& seat = seats[last % capacity];
  seat.number = last++;
  seat.is_done.store(false, std::memory_order_relaxed);
  bytes_under_way += seat.item.query.size();
  auto const hash = std::hash<std::string_view>()(seat.item.query);
  workers[hash % workers.size()]->add(&seat);
  if (last - handed_out >= group) hand_out();
}

void Crew::hand_out() {
  if (handed_out == last) return;
  handed_out = last;
  for (auto const& worker : workers) worker->publish();
}

Item& Crew::first_item() {
  hand_out();
  auto& seat = seats[first % capacity];
  seat.is_done.wait(false, std::memory_order_acquire);
  return seat.item;
}

void Crew::release_first() {
  auto& item = seats[first % capacity].item;
  bytes_waiting -= item.answer.size();
  bytes_under_way -= item.query.size();
  // A ring of long texts would be more than what is under way.
  for (auto* const text : {&item.query, &item.answer})
    if (text->capacity() > 1024) std::string().swap(*text);
  ++first;
  taken.store(first);
  taken.notify_all();
}

}  // namespace zelk::cli
