#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <iostream>
#include <new>
#include <set>
#include <string>
#include <utility>

#include "tests/faults/failing_heap.h"
#include "tests/support/text_form.h"
#include "zelk/convert/text.h"
#include "zelk/zelk.h"

namespace zelk {
namespace {

namespace heap = test::heap;
using test::number;
using Facts = std::set<std::string>;

/// Something done to a World. `run` gives the result as text, made once no failure can happen any
/// more, and says in `fired` whether one has.
template <class World>
struct Operation {
  template <class Act>
  Operation(char const* label, Act act)
      : name(label), run([act](World& world, bool& fired) {
          auto&& result = act(world);
          fired = heap::fail_at(0);
          return test::show(result);
        }) {}

  char const* name;
  std::function<std::string(World&, bool&)> run;
};

/// Fails the first allocation of an operation, then the second, and so on until there are no more,
/// each in a new world. Each time the failure reaches the caller, nothing is lost or half made, the
/// next try gives what a new world gives, for as many blocks, and in the end all are given back.
template <class World, class Make>
void sweep(Operation<World> const& operation, Make make) {
  SCOPED_TRACE(operation.name);
  bool fired = false;
  World expected = make();
  std::string const answer = operation.run(expected, fired);
  Facts const before = make().facts(), outcome = expected.facts();
  long weight = -heap::live_blocks;
  {
    World world = make();
    operation.run(world, fired);
    weight += heap::live_blocks;
  }
  fired = true;
  for (long nth = 1; fired && !testing::Test::HasFailure(); ++nth) {
    SCOPED_TRACE(nth);
    long const blocks = heap::live_blocks;
    {
      World world = make();
      bool caught = false;
      heap::fail_at(nth);
      try {
        operation.run(world, fired);
      } catch (std::bad_alloc const&) {
        caught = true;
        fired = heap::fail_at(0);
      }
      EXPECT_EQ(caught, fired);
      if (fired) {
        Facts const after = world.facts();
        EXPECT_TRUE(std::includes(after.begin(), after.end(), before.begin(), before.end()));
        for (std::string const& fact : after)
          EXPECT_TRUE(before.contains(fact) || outcome.contains(fact)) << "half made: " << fact;
        EXPECT_EQ(operation.run(world, caught), answer);
      }
      EXPECT_EQ(heap::live_blocks - blocks, weight);
      EXPECT_EQ(world.facts(), outcome);
    }
    EXPECT_EQ(heap::live_blocks, blocks);
  }
}

void report() {
  std::cout << heap::failed_news << " failures of new, " << heap::failed_mallocs << " of malloc\n";
}

struct Numbers {
  Facts facts() const { return {"a = " + test::show(a), "b = " + test::show(b)}; }

  QNumber a, b;
};

TEST(FailedAllocation, LeavesNumbersAsTheyWere) {
  using W = Numbers&;
  Operation<Numbers> const operations[] = {
      {"least integer", [](W) { return QNumber(LONG_MIN); }},
      {"least numerator", [](W) { return QNumber(LONG_MIN, 6); }},
      {"copy", [](W w) { return QNumber(w.a); }},
      {"from_mpz", [](W w) { return QNumber::from_mpz(w.a.numerator(), w.b.numerator()); }},
      {"big_from_mpz", [](W w) { return QNumber::big_from_mpz(w.a.numerator(), w.b.numerator()); }},
      {"a = b", [](W w) -> QNumber& { return w.a = w.b; }},
      {"a += b", [](W w) -> QNumber& { return w.a += w.b; }},
      {"a -= b", [](W w) -> QNumber& { return w.a -= w.b; }},
      {"a *= b", [](W w) -> QNumber& { return w.a *= w.b; }},
      {"a /= b", [](W w) -> QNumber& { return w.a /= w.b; }},
      {"a += a", [](W w) -> QNumber& { return w.a += w.a; }},
      {"a /= a", [](W w) -> QNumber& { return w.a /= w.a; }},
      {"a *= 0", [](W w) -> QNumber& { return w.a *= QNumber(0); }},
      {"a + b", [](W w) { return w.a + w.b; }},
      {"a - b", [](W w) { return w.a - w.b; }},
      {"a * b", [](W w) { return w.a * w.b; }},
      {"a / b", [](W w) { return w.a / w.b; }},
      {"inv", [](W w) { return w.a.inv(); }},
      {"abs", [](W w) { return abs(w.a); }},
      {"self_decompose", [](W w) { return w.a.self_decompose(); }},
      {"text and back", [](W w) { return convert::parse_rational(convert::to_string(w.a)); }},
      {"decimal", [](W) { return convert::parse_rational("-1234567890123456789012.5e-3"); }},
      {"refusal",
       [](W) {
         try {
           return convert::parse_rational("123456789012345678901234567890/0");
         } catch (convert::ParseError const&) {
           return QNumber();
         }
       }},
  };
  auto const operands = test::numbers(
      "1/2 -9223372036854775807 9223372036854775807/3 -3/9223372036854775807 5B -7/2B "
      "-9223372036854775808B 100000000000000000000000000000000000000001/3B");
  for (auto const& operation : operations)
    for (QNumber const& a : operands)
      for (QNumber const& b : operands) sweep(operation, [&] { return Numbers{a, b}; });
  EXPECT_GT(heap::failed_news, 0);
  report();
}

/// A map and the two approximators, with n entries in every table but that of pi.
struct Tables {
  using Map =
      hsh::HashMap<std::pair<QNumber, unsigned>, QNumber, hsh::pair_hash_eq, hsh::pair_hash_eq>;

  explicit Tables(unsigned n) {
    for (unsigned i = 0; i < n; ++i) {
      QNumber const q(1, i + 2);
      map.insert({{q / number("1000000000000000000000"), i}, q});
      rational.do_approx(q, 1);
      series.maclaurin_exp_compute(q, 0);
      series.maclaurin_sin_compute(q, 0);
    }
  }

  Facts facts() {
    Facts all;
    auto const add = [&](char const* name, auto const& table) {
      for (std::string const& entry : test::entries(table)) all.insert(name + entry);
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

  Map map;
  na::RationalApproximator rational;
  na::PowerSeriesApproximator series{rational};
};

TEST(FailedAllocation, LeavesTablesWithWhatTheyHeld) {
  using W = Tables&;
  static QNumber const big = number("-123456789012345678901/98765432109876543210");
  static std::pair const key(big, 3U);
  static std::pair const known(number("1/2000000000000000000000"), 0U);
  Operation<Tables> const operations[] = {
      {"construct", [](W) { return Tables(0).map.size() == 0; }},
      {"insert", [](W w) { return w.map.insert(std::pair(key, big)).second; }},
      {"insert known", [](W w) { return w.map.insert(std::pair(known, big)).second; }},
      {"do_insert",
       [](W w) {
         std::size_t index;
         Tables::Map::Bucket* node;
         return w.map.do_insert(std::pair(key, big), &index, &node), node->value;
       }},
      {"operator[]", [](W w) -> QNumber& { return w.map[key]; }},
      {"operator[] known", [](W w) -> QNumber& { return w.map[known]; }},
      {"store", [](W w) -> QNumber& { return w.map.store(key, big); }},
      {"store known", [](W w) -> QNumber& { return w.map.store(known, big); }},
      {"rehash", [](W w) { return w.map.rehash(700), w.map.bucket_count() == 1291; }},
      {"get_cf", [](W w) { return w.rational.get_cf(big, 5); }},
      {"get_cf small", [](W w) { return w.rational.get_cf(QNumber(-415, 93), 9); }},
      {"get_cf known", [](W w) { return w.rational.get_cf(QNumber(1, 2), 9); }},
      {"do_approx", [](W w) { return w.rational.do_approx(big, 4); }},
      {"do_approx integer", [](W w) { return w.rational.do_approx(QNumber(LONG_MIN), 4); }},
      {"approx up", [](W w) { return w.rational.approx(big, 1, 1); }},
      {"approx down", [](W w) { return w.rational.approx(QNumber(415, 93), 2, -1); }},
      {"exp", [](W w) { return w.series.maclaurin_exp_bounds(big, 1); }},
      {"exp derivative", [](W w) { return w.series.maclaurin_exp_der_bounds(abs(big), 1); }},
      {"sin", [](W w) { return w.series.maclaurin_sin_bounds(big, 1); }},
      {"sin derivative", [](W w) { return w.series.maclaurin_sin_der_bounds(QNumber(1, 40), 7); }},
      {"pi", [](W w) { return w.series.machin_pi_bounds(2); }},
  };
  for (auto const& operation : operations)
    for (unsigned const n : {0U, 15U, 16U, 21U, 22U}) sweep(operation, [&] { return Tables(n); });
  EXPECT_GT(heap::failed_mallocs, 0);
  report();
}

}  // namespace
}  // namespace zelk
