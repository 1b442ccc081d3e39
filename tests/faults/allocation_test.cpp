#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <new>
#include <string>
#include <utility>

#include "tests/faults/failing_heap.h"
#include "tests/support/world.h"
#include "zelk/convert/text.h"
#include "zelk/zelk.h"

namespace zelk {
namespace {

namespace heap = test::heap;
using test::number;
using test::show;
using test::World;

struct Operation {
  char const* name;
  void (*run)(World&);
};

/// Fails the first allocation of an operation, then the second, and so on until there are no more,
/// each in a new world. Each time the failure reaches the caller, nothing is lost or half made, the
/// next try leaves what it leaves in a new world, in as many blocks, and in the end all are given
/// back.
void sweep(Operation const& operation, unsigned n, QNumber const& a, QNumber const& b) {
  SCOPED_TRACE(operation.name);
  World expected(n, a, b);
  auto const before = expected.facts();
  operation.run(expected);
  auto const outcome = expected.facts();
  long weight = 0;
  bool fired = true;
  for (long nth = 0; fired && !testing::Test::HasFailure(); ++nth) {  // at 0 none fails
    SCOPED_TRACE(nth);
    long const blocks = heap::live_blocks;
    {
      World world(n, a, b);
      bool caught = false;
      heap::fail_at(nth);
      try {
        operation.run(world);
      } catch (std::bad_alloc const&) {
        caught = true;
      }
      fired = heap::fail_at(0);
      EXPECT_EQ(caught, fired);
      if (fired) {
        auto const after = world.facts();
        EXPECT_TRUE(std::ranges::includes(after, before));
        for (std::string const& fact : after)
          EXPECT_TRUE(before.contains(fact) || outcome.contains(fact)) << "half made: " << fact;
        operation.run(world);
      }
      if (nth == 0) weight = heap::live_blocks - blocks;
      EXPECT_EQ(heap::live_blocks - blocks, weight);
      EXPECT_EQ(world.facts(), outcome);
    }
    EXPECT_EQ(heap::live_blocks, blocks);
    fired |= nth == 0;
  }
}

using W = World&;

void refuse(W w) try {
  convert::parse_rational("-123456789012345678901234567890.5e-3/0");
} catch (convert::ParseError const&) {
  w.answer = "refused";
}

TEST(FailedAllocation, LeavesNumbersAsTheyWere) {
  Operation const operations[] = {
      {"least integer", [](W w) { w.answer = show(QNumber(LONG_MIN)); }},
      {"least numerator", [](W w) { w.answer = show(QNumber(LONG_MIN, 6)); }},
      {"copy", [](W w) { w.answer = show(QNumber(w.a)); }},
      {"from_mpz",
       [](W w) { w.answer = show(QNumber::from_mpz(w.a.numerator(), w.b.numerator())); }},
      {"big",
       [](W w) { w.answer = show(QNumber::big_from_mpz(w.a.numerator(), w.b.numerator())); }},
      {"a = b", [](W w) { w.a = w.b; }},
      {"a += b", [](W w) { w.a += w.b; }},
      {"a *= b", [](W w) { w.a *= w.b; }},
      {"a /= b", [](W w) { w.a /= w.b; }},
      {"a += a", [](W w) { w.a += w.a; }},
      {"a /= a", [](W w) { w.a /= w.a; }},
      {"a + b", [](W w) { w.answer = show(w.a + w.b); }},
      {"a * b", [](W w) { w.answer = show(w.a * w.b); }},
      {"inv", [](W w) { w.answer = show(w.a.inv()); }},
      {"abs", [](W w) { w.answer = show(abs(w.a)); }},
      {"self_decompose", [](W w) { w.a.self_decompose(); }},
      {"text", [](W w) { w.answer = show(convert::parse_rational(convert::to_string(w.a))); }},
      {"refusal", refuse},
  };
  auto const operands = test::numbers(
      "1/2 -9223372036854775807 9223372036854775807/3 -3/9223372036854775807 5B -7/2B "
      "-9223372036854775808B 100000000000000000000000000000000000000001/3B");
  for (auto const& operation : operations)
    for (QNumber const& a : operands)
      for (QNumber const& b : operands) sweep(operation, 0, a, b);
  EXPECT_GT(heap::failed_news, 0);
}

TEST(FailedAllocation, LeavesTablesWithWhatTheyHeld) {
  static std::pair const key(number("-123456789012345678901/98765432109876543210"), 3U);
  static std::pair const known(number("1/2000000000000000000000"), 0U);
  Operation const operations[] = {
      {"construct", [](W w) { w.answer = show(World(0, w.a, w.b).map.size() == 0); }},
      {"insert", [](W w) { w.map.insert(std::pair(key, w.a)); }},
      {"insert known", [](W w) { w.map.insert(std::pair(known, w.a)); }},
      {"operator[]", [](W w) { w.map[key]; }},
      {"operator[] known", [](W w) { w.map[known]; }},
      {"store", [](W w) { w.map.store(key, w.a); }},
      {"rehash", [](W w) { w.map.rehash(700); }},
      {"get_cf", [](W w) { w.answer = show(w.rational.get_cf(w.a, 5)); }},
      {"get_cf small", [](W w) { w.answer = show(w.rational.get_cf(w.b, 9)); }},
      {"get_cf known", [](W w) { w.answer = show(w.rational.get_cf(QNumber(1, 2), 9)); }},
      {"do_approx", [](W w) { w.answer = show(w.rational.do_approx(w.a, 4)); }},
      {"approx up", [](W w) { w.answer = show(w.rational.approx(w.a, 1, 1)); }},
      {"approx down", [](W w) { w.answer = show(w.rational.approx(w.b, 2, -1)); }},
      {"exp", [](W w) { w.answer = show(w.series.maclaurin_exp_bounds(w.a, 1)); }},
      {"sin", [](W w) { w.answer = show(w.series.maclaurin_sin_bounds(w.a, 1)); }},
      {"cos", [](W w) { w.answer = show(w.series.maclaurin_sin_der_bounds(QNumber(1, 40), 7)); }},
      {"pi", [](W w) { w.answer = show(w.series.machin_pi_bounds(2)); }},
      {"short pi", [](W w) { w.answer = show(na::short_pi_bounds(40)); }},
      {"short exp", [](W w) { w.answer = show(na::short_exp_bounds(w.series, w.b, 25)); }},
      {"shortened", [](W w) { w.answer = show(na::shortened(std::pair(w.a, w.a), 0)); }},
      {"best", [](W w) { w.answer = show(na::best_above(w.a, QNumber(1UL << 63))); }},
      {"terms", [](W w) { w.answer = show(na::convergents(na::common_terms(w.a, w.a)).back()); }},
  };
  for (auto const& operation : operations)
    for (unsigned const n : {0U, 15U, 16U, 21U, 22U})
      sweep(operation, n, key.first, QNumber(-415, 93));
  EXPECT_GT(heap::failed_mallocs, 0);
}

TEST(FailedAllocation, LeavesATableThatAskedForTooMuch) {
  World::Map map;
  for (unsigned i = 0; i < 20; ++i) map[{QNumber(i, 7), i}] = i;
  heap::fail_at(1);
  EXPECT_THROW(map.rehash(5'000'000'000), std::bad_alloc);
  EXPECT_TRUE(heap::fail_at(0));
  EXPECT_EQ(map.bucket_count(), 31U);
  for (unsigned i = 20; i < 40; ++i) map[{QNumber(i, 7), i}] = i;
  for (unsigned i = 0; i < 40; ++i) EXPECT_EQ(map.find({QNumber(i, 7), i}).node->value.second, i);
}

/// The index of a long chain is help, not duty: without memory for it the table does without.
TEST(FailedAllocation, LeavesLongChainsToBeWalked) {
  for (long nth = 1; nth <= 20; ++nth) {
    World::Map map;
    auto const add = [&](long i) { map[{QNumber(i, 1009), 3U}] = i; };
    for (long i = 0; i < 32; ++i) add(i);
    heap::fail_at(nth);
    for (long i = 32; i < 300; ++i) try {
        add(i);
      } catch (std::bad_alloc const&) {
        add(i);
      }
    EXPECT_TRUE(heap::fail_at(0)) << nth;
    EXPECT_EQ(map.size(), 300U);
    for (long i = 0; i < 300; ++i)
      ASSERT_EQ(map.find({QNumber(i, 1009), 3U}).node->value.second, i) << nth;
    EXPECT_EQ(map.find({QNumber(300, 1009), 3U}), map.end());
  }
}

}  // namespace
}  // namespace zelk
