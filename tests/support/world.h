#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>

#include "tests/support/text_form.h"
#include "zelk/zelk.h"

namespace zelk::test {

/// Two numbers, a map and the two approximators, with n entries in every table but that of pi.
struct World {
  using Map =
      hsh::HashMap<std::pair<QNumber, unsigned>, QNumber, hsh::pair_hash_eq, hsh::pair_hash_eq>;

  World(unsigned n, QNumber const& first, QNumber const& second) : a(first), b(second) {
    for (unsigned i = 0; i < n; ++i) {
      QNumber const q(1, static_cast<long>(i) + 2);
      map.insert({{q / number("1000000000000000000000"), i}, q});
      rational.do_approx(q, 1);
      series.maclaurin_exp_compute(q, 0);
      series.maclaurin_sin_compute(q, 0);
    }
  }

  /// All that can be seen of it.
  std::set<std::string> facts() {
    std::set<std::string> all = {"a = " + show(a), "b = " + show(b)};
    if (!answer.empty()) all.insert("answer " + answer);
    auto const add = [&](char const* name, auto const& table) {
      auto const entries = test::entries(table);
      EXPECT_EQ(entries.size(), table.size());
      for (std::string const& entry : entries) all.insert(name + entry);
    };
    add("map ", map);
    add("approx ", rational.approximations());
    add("cf ", rational.expansions());
    add("exp ", series.exp_records());
    add("sin ", series.sin_records());
    add("pi ", series.pi_records());
    // An entry in a wrong chain is lost to lookups.
    for (std::size_t i = 0; i < map.bucket_count(); ++i)
      for (auto const* node = map.chain(i); node; node = node->next)
        EXPECT_EQ(map.find(node->value.first).node, node);
    return all;
  }

  QNumber a, b;
  Map map;
  na::RationalApproximator rational;
  na::PowerSeriesApproximator series{rational};
  std::string answer;
};

}  // namespace zelk::test
