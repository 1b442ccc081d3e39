#include "cli/batch.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <new>
#include <string_view>
#include <unordered_map>

#include "cli/lines.h"
#include "cli/solver.h"
#include "cli/terminal.h"

namespace zelk::cli {
namespace {

constexpr std::string_view blanks = " \t\r";

/// What counts of a line.
Word stripped(std::string_view line) {
  line = line.substr(0, line.find('#'));
  auto const first = line.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return {line.substr(first, line.find_last_not_of(blanks) - first + 1), first + 1};
}

/// Some editors put a byte order mark before the first line.
std::string_view without_mark(std::string_view line) {
  constexpr std::string_view mark = "\xef\xbb\xbf";
  return line.starts_with(mark) ? line.substr(mark.size()) : line;
}

struct TextHash : std::hash<std::string_view> {
  using is_transparent = void;
};

class Batch {
 public:
  Batch(BatchOptions const& batch_options, Settings const& answer_settings)
      : options(batch_options), settings(answer_settings) {}

  bool run() {
    auto const begin = std::chrono::steady_clock::now();
    Progress progress;
    for (Lines lines(options.file); lines.next();) {
      ++number;
      progress.show(number, repeated);
      Word const query = stripped(number == 1 ? without_mark(lines.text()) : lines.text());
      // What a long comment leaves is whole all the same.
      bool const is_cut = lines.is_cut() && lines.text().find('#') == std::string_view::npos;
      if (is_cut || !query.text.empty()) ++queries;
      if (is_cut)
        refuse({query.text.substr(0, 64)}, too_long());
      else if (!query.text.empty())
        answer(query);
      if (refused != 0 && options.fail_fast) break;
      if (!lines.are_at_hand()) flush_output();
    }
    flush_output();
    if (options.stats) {
      std::chrono::duration<double> const took = std::chrono::steady_clock::now() - begin;
      char text[128];
      std::snprintf(text, sizeof text, "%zu queries, %zu of them repeated, %zu refused, %.2f s",
                    queries, repeated, refused, took.count());
      complain(text);
    }
    return refused == 0;
  }

 private:
  static Refusal too_long() {
    std::string const reason =
        "the line is longer than " + std::to_string(Lines::capacity) + " bytes";
    return {Refusal::Kind::malformed, 1, reason, reason};
  }

  void answer(Word const& query) {
    if (auto const known = finished.find(query.text); known != finished.end()) {
      ++repeated;
      put(known->second);
      return;
    }
    try {
      put(finished.emplace(query.text, compute(query.text)).first->second);
    } catch (Refusal const& refusal) {
      refuse(query, refusal);
    } catch (std::bad_alloc const&) {
      refuse(query, {Refusal::Kind::unanswerable, 1, "not enough memory", "not enough memory"});
    }
  }

  std::string compute(std::string_view text) {
    Query const query = parse_query(split_query(text));
    Answer const answer = solver.answer(query, places_of(query, settings.style));
    if (settings.style.json) return to_json(text, query, answer, settings.style) + '\n';
    return to_text(query, answer, settings.style, " ", "; ") + '\n';
  }

  void refuse(Word const& query, Refusal refusal) {
    ++refused;
    refusal.column += query.column - 1;
    if (settings.style.json) put(to_json(query.text, refusal) + '\n');
    complain(options.file + ':' + std::to_string(number) + ':' + std::to_string(refusal.column) +
             ": " + refusal.reason);
  }

  /// An object also tells its line.
  void put(std::string_view text) const {
    if (settings.style.json) {
      print("{\"line\":" + std::to_string(number) + ',');
      text.remove_prefix(1);
    }
    print(text);
  }

  BatchOptions const& options;
  Settings const& settings;
  Solver solver{settings.limits};
  // All finished answers by the text of their query: a repeated one is one lookup, whatever the
  // tables of the library make of its point.
  std::unordered_map<std::string, std::string, TextHash, std::equal_to<>> finished;
  std::size_t number = 0;  // of the line
  std::size_t queries = 0;
  std::size_t repeated = 0;
  std::size_t refused = 0;
};

}  // namespace

bool run_batch(BatchOptions const& options, Settings const& settings) {
  return Batch(options, settings).run();
}

}  // namespace zelk::cli
