#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <unordered_map>
#include <utility>

#include "benchmarks/peers.h"
#include "benchmarks/row.h"
#include "zelk/approx/power_series_approximator.h"

namespace zelk::bench {

namespace {

using na::PowerSeriesApproximator;

constexpr unsigned digits = 3;

/// Answered queries of exp, and the order in which they come again; beside them a standard map of
/// the same records, with the same hash and equality.
struct Stored {
  explicit Stored(std::vector<QNumber> points) : queries(std::move(points)) {
    for (QNumber const& x : queries) series.maclaurin_exp_bounds(x, digits);
    auto const& table = series.exp_records();
    for (std::size_t i = 0; i < table.bucket_count(); ++i)
      for (auto const* node = table.chain(i); node != nullptr; node = node->next)
        map.insert(node->value);
    std::shuffle(queries.begin(), queries.end(), std::mt19937(1));
  }

  auto by_library(QNumber const& x) { return series.maclaurin_exp_bounds(x, digits); }
  auto by_map(QNumber const& x) const { return map.find({x, digits})->second.bounds; }

  std::vector<QNumber> queries;
  na::RationalApproximator approximator;
  PowerSeriesApproximator series{approximator};
  std::unordered_map<std::pair<QNumber, unsigned>, PowerSeriesApproximator::ApproxData,
                     hsh::pair_hash_eq, hsh::pair_hash_eq>
      map;
};

template <class Lookup>
Answer all_of(Stored const& stored, Lookup lookup) {
  Answer all;
  for (QNumber const& x : stored.queries) {
    PowerSeriesApproximator::Bounds const bounds = lookup(x);
    all.push_back(to_mpq(bounds.first));
    all.push_back(to_mpq(bounds.second));
  }
  return all;
}

void enter_row(std::string const& name, std::vector<QNumber> points) {
  auto const stored = std::make_shared<Stored>(std::move(points));
  auto const ours = [stored](QNumber const& x) { return stored->by_library(x); };
  auto const theirs = [stored](QNumber const& x) { return stored->by_map(x); };
  auto const repeated = [stored](auto lookup) {
    return [stored, lookup] {
      for (QNumber const& x : stored->queries) benchmark::DoNotOptimize(lookup(x));
    };
  };
  Row("Repeated query, exp at 3 digits", name, stored->queries.size())
      .enter("zelk", repeated(ours), [=] { return all_of(*stored, ours); })
      .enter("std::unordered_map", repeated(theirs), [=] { return all_of(*stored, theirs); });
}

}  // namespace

void enter_lookup() {
  // At points that close to 0 every stored number is in small form.
  std::vector<QNumber> points;
  for (long d = 1; d <= 10000; ++d) points.emplace_back(d % 2 == 0 ? 1 : -1, d);
  enter_row("10,000 points, each with a denominator of its own", points);

  // The hash tells points of one denominator apart by the sign alone.
  points.clear();
  for (long d = 1009; points.size() < 10000; d += 2)
    for (long n = 1; n <= 64; n *= 2) points.insert(points.end(), {QNumber(n, d), QNumber(-n, d)});
  enter_row("10,000 points, fourteen to a denominator", points);
}

}  // namespace zelk::bench
