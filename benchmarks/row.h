#pragma once

#include <gmpxx.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelk::bench {

/// What a contender computes, in a form that all contenders of a row share.
using Answer = std::vector<mpq_class>;

/// One row of the report: contenders that do the same work, this library first.
///
/// Before a contender is timed its answer is held against the library's; one that disagrees is
/// reported as an error and not timed.
class Row {
 public:
  using Work = std::function<void()>;
  using Compute = std::function<Answer()>;
  using Agree = std::function<bool(Answer const& ours, Answer const& theirs)>;

  /// `operations` is how often one call of a contender's work does what the row names.
  Row(std::string const& subject, std::string const& name, std::size_t operations = 1);

  /// `work` is timed; `answer` is what it computes.
  Row& enter(std::string const& contender, Work const& work, Compute const& answer,
             Agree const& agree = std::equal_to<Answer>());

 private:
  /// The library's answer, found when the first contender needs it.
  struct Reference {
    Compute compute;
    std::optional<Answer> answer;
  };

  std::string path;
  std::size_t operations;
  std::shared_ptr<Reference> reference = std::make_shared<Reference>();
};

/// The rows of each subject.
void enter_arithmetic();
void enter_whole();
void enter_expansion();
void enter_lookup();
void enter_series();
void enter_elementary();

}  // namespace zelk::bench
