#include "cli/batch.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <thread>

#include "cli/answers.h"
#include "cli/crew.h"
#include "cli/lines.h"
#include "cli/output.h"
#include "cli/progress.h"
#include "cli/status.h"
#include "cli/terminal.h"

namespace zelk::cli {
namespace {

constexpr std::string_view blanks = " \t\r";
constexpr char too_long[] = "the line is longer than 16777216 bytes";
static_assert(Lines::capacity == 16777216);

/// The query of a line, without its comment and the blanks around it.
Word query_of(std::string_view line) {
  line = without_comment(line);
  auto const first = line.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return {line.substr(first, line.find_last_not_of(blanks) - first + 1), first + 1};
}

/// Some editors put a byte order mark before the first line.
std::string_view without_mark(std::string_view line) {
  constexpr std::string_view mark = "\xef\xbb\xbf";
  return line.starts_with(mark) ? line.substr(mark.size()) : line;
}

class Batch {
 public:
  Batch(BatchOptions const& batch_options, Settings const& answer_settings)
      : options(batch_options), settings(answer_settings) {}

  bool run() {
    {
      Progress const progress([this](std::span<char> line, long) {
        return std::snprintf(line.data(), line.size(), "%zu lines, %zu answered before",
                             told.load(), repeated.load());
      });
      print_by_lines();
      unsigned const jobs =
          options.jobs != 0 ? options.jobs : std::max(1U, std::thread::hardware_concurrency());
      // First of all its buffer, which has to have a place whatever workers there will be.
      Lines lines(options.file, [this] { return get_ready_to_wait(); });
      jobs == 1 ? run_alone(lines) : run_with_crew(lines, jobs);
      flush_output();
    }
    tell_statistics();
    return refused == 0;
  }

 private:
  using Clock = std::chrono::steady_clock;

  void run_alone(Lines& lines) {
    Answers answers(settings, settings.limits.max_bits);
    for (Item item; must_go_on() && read(lines, item);) {
      answers.answer(item);
      tell(item);
    }
  }

  void run_with_crew(Lines& lines, unsigned jobs) {
    crew = std::make_unique<Crew>(settings, jobs);
    if (!crew->has_workers()) {
      crew.reset();
      return run_alone(lines);
    }
    try {
      while (must_go_on() && read(lines, crew->next_item())) {
        crew->accept();
        while (must_go_on() && crew->is_full()) tell_first();
      }
      tell_all();
    } catch (...) {
      end_now(give_up_by_exception());
    }
    if (crew->is_empty()) return;
    // Whoever leaves early neither waits for workers in the middle of long work nor takes away what
    // they use.
    flush_output();
    tell_statistics();
    end_now(not_answered);
  }

  void tell_first() {
    tell(crew->first_item());
    crew->release_first();
  }

  void tell_all() {
    while (must_go_on() && !crew->is_empty()) tell_first();
  }

  /// Returns whether more is to be read.
  bool get_ready_to_wait() {
    if (crew) tell_all();
    flush_output();
    return must_go_on();
  }

  bool must_go_on() const { return refused == 0 || !options.fail_fast; }

  /// Reads the next query; false at the end.
  bool read(Lines& lines, Item& item) {
    while (lines.next() && must_go_on()) {
      ++number;
      Word query = query_of(number == 1 ? without_mark(lines.text()) : lines.text());
      if (query.text.empty() && !lines.is_cut()) continue;
      if (lines.is_cut()) query.text = query.text.substr(0, 64);
      item.query = query.text;
      item.line = number;
      item.column = query.text.empty() ? 1 : query.column;
      item.flaw = lines.is_cut() ? too_long : nullptr;
      return true;
    }
    return false;
  }

  /// Prints what became of a query. The number of its line becomes the first member of an object.
  void tell(Item const& item) {
    if (item.is_last) end_now(give_up("not enough memory", not_answered));
    ++queries;
    told = item.line;
    repeated += item.is_repeated;
    Decimal const line(item.line);
    if (settings.style.json) print({R"({"line":)", line, ","});
    if (item.is_answered()) {
      put(std::string_view(item.answer).substr(settings.style.json ? 1 : 0));
      put("\n");
      flush_now_and_then();
      if (item.note != nullptr) complain_at(line, item.column, item.note);
      return;
    }
    ++refused;
    auto const column = item.offending_column + item.column - 1;
    if (settings.style.json) {
      write_json_error(item.query, column, item.reason, put);
      put("\n");
    }
    flush_output();
    complain_at(line, column, item.reason);
  }

  void complain_at(Decimal const& line, std::size_t column, std::string_view text) const {
    complain({options.file, ":", line, ":", Decimal(column), ": ", text});
  }

  void tell_statistics() const {
    if (!options.stats) return;
    std::chrono::duration<double> const took = Clock::now() - begin;
    char text[128];
    std::snprintf(text, sizeof text, "%zu queries, %zu of them repeated, %zu refused, %.2f s",
                  queries, repeated.load(), refused, took.count());
    complain({text});
  }

  /// Answers that took long are not held back.
  void flush_now_and_then() {
    auto const now = Clock::now();
    if (now - last_flush < std::chrono::milliseconds(100)) return;
    flush_output();
    last_flush = now;
  }

  BatchOptions const& options;
  Settings const& settings;
  Clock::time_point const begin = Clock::now();
  Clock::time_point last_flush = begin;
  std::size_t number = 0;             // of the line being read
  std::atomic<std::size_t> told = 0;  // and of the last one whose answer was printed
  std::atomic<std::size_t> repeated = 0;
  std::unique_ptr<Crew> crew;  // null while the queries are answered one after the other
  std::size_t queries = 0;
  std::size_t refused = 0;
};

}  // namespace

bool run_batch(BatchOptions const& options, Settings const& settings) {
  return Batch(options, settings).run();
}

}  // namespace zelk::cli
