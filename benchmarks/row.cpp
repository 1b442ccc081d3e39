#include "benchmarks/row.h"

#include <benchmark/benchmark.h>

namespace zelk::bench {

Row::Row(std::string const& subject, std::string const& name, std::size_t operations_per_call)
    : path(subject + ": " + name + ": "), operations(operations_per_call) {}

Row& Row::enter(std::string const& contender, Work const& work, Compute const& answer,
                Agree const& agree) {
  if (!reference->compute) reference->compute = answer;
  auto const run = [=, ours = reference, count = static_cast<double>(operations),
                    judged = std::make_shared<bool>(false)](benchmark::State& state) {
    if (!*judged) {
      if (!ours->answer) ours->answer = ours->compute();
      if (!agree(*ours->answer, answer())) {
        state.SkipWithError("another answer than the library's");
        return;
      }
      *judged = true;
    }
    for ([[maybe_unused]] auto const step : state) work();
    state.counters["operations"] = count;
  };
  benchmark::RegisterBenchmark((path + contender).c_str(), run);
  return *this;
}

}  // namespace zelk::bench
