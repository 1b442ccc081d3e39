#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "cli/memory.h"
#include "cli/settings.h"
#include "cli/solver.h"

namespace zelk::cli {

/// A query of a batch and what became of it.
struct Item {
  std::string query;
  std::size_t line = 0;
  std::size_t column = 1;      // where the query begins in its line
  char const* flaw = nullptr;  // of a line that cannot be read as a query

  std::string answer;  // or the reason why there is none
  std::string_view reason;
  std::size_t offending_column = 1;  // in the query
  char const* note = nullptr;        // to be told beside the answer
  bool is_repeated = false;
  bool is_last = false;  // the command cannot go on

  bool is_answered() const { return reason.empty(); }
  void refuse(std::string_view why) {
    reason = why;
    offending_column = 1;
  }
};

/// Answers queries, and keeps the answers by the text of their query: a repeated one costs one
/// lookup. Short of memory it lets go of all that it keeps and tries once more.
class Answers : public Reserve {
 public:
  /// Keeps `share` bits, answers and the tables of the library together.
  Answers(Settings const& answer_settings, double bits) : settings(answer_settings), share(bits) {}

  void answer(Item& item);

  bool let_go() override;

 private:
  struct Finished {
    std::string answer;
    char const* note;
  };

  struct TextHash : std::hash<std::string_view> {
    using is_transparent = void;
  };

  void look_up_or_compute(Item& item);
  void compute(Item& item);
  void keep(Item const& item);
  void let_go_of_all();

  Settings const& settings;
  double const share;
  Solver solver{settings.limits};
  std::unordered_map<std::string, Finished, TextHash, std::equal_to<>> finished;
  double kept = 0;  // by them, in bits
};

}  // namespace zelk::cli
