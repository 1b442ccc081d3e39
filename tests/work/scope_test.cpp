#include "zelk/work/scope.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stop_token>
#include <string>
#include <thread>

#include "tests/support/world.h"
#include "zelk/convert/text.h"
#include "zelk/numbers/functions.h"
#include "zelk/real/enclose.h"
#include "zelk/real/parse.h"

namespace zelk {
namespace {

using namespace std::chrono_literals;
using test::show;
using Clock = std::chrono::steady_clock;

/// Tables and numbers, and functions that keep their constants.
struct World : test::World {
  World() : test::World(16, test::number("123456789012345678901/98765432109876543210"), 0) {}

  real::ElementaryFunctions functions;
};

struct Scenario {
  char const* name;
  std::string (*ask)(World& w);
};

template <unsigned digits>
std::string value(World& w, char const* text) {
  return show(real::enclose(w.functions, real::parse_expression(text), digits).bounds.lower());
}

QNumber long_pi() { return na::short_pi_bounds(700).first; }

QNumber long_number() { return zelk::pow(QNumber(10, 7), 40000); }

Scenario const scenarios[] = {
    {"exp",
     [](World& w) {
       return show(w.series.maclaurin_exp_bounds({-1, 3}, 200));
     }},
    {"sine",
     [](World& w) {
       return show(w.series.maclaurin_sin_bounds({22, 7}, 200));
     }},
    {"pi", [](World& w) { return show(w.series.machin_pi_bounds(12)); }},
    {"expansion", [](World& w) { return show(w.rational.get_cf(long_pi(), 400)); }},
    {"walk", [](World& w) { return show(w.rational.approx(long_pi(), 30, 1)); }},
    {"short pi", [](World&) { return show(na::short_pi_bounds(900)); }},
    {"best", [](World&) { return show(na::best_nearest(long_pi(), zelk::pow(10, 300))); }},
    {"functions", [](World& w) { return value<350>(w, "log(11/7) + atan(sin(3)) ^ exp(1/9)"); }},
    {"splitting", [](World& w) { return value<2500>(w, "exp(1/3)"); }},
    {"roots and terms",
     [](World& w) {
       auto const terms =
           real::terms(w.functions, real::parse_expression("sqrt(2) + root(5, 3)"), 90).terms;
       return show(na::convergents(terms).back());
     }},
    {"text",
     [](World&) {
       return convert::to_string(convert::parse_rational(convert::to_string(long_number())));
     }},
};

/// Stops its thread's work when it is asked for the nth time.
struct Stopper final : work::Meter {
  explicit Stopper(unsigned long nth) : left(nth) {}
  void check() override {
    if (--left == 0) throw work::Stopped(work::Reason::request, work());
  }
  unsigned long left;
};

TEST(Stops, LoseNothingWhereverTheyCome) {
  for (auto const& scenario : scenarios) {
    SCOPED_TRACE(scenario.name);
    World expected;
    auto const before = expected.facts();
    auto const answer = scenario.ask(expected);
    auto const outcome = expected.facts();
    bool stopped = true;
    unsigned long nth = 1;
    for (; stopped && !HasFailure(); ++nth) {
      World world;
      try {
        Stopper const stopper(nth);
        scenario.ask(world);
        stopped = false;
      } catch (work::Stopped const&) {
        auto const after = world.facts();
        EXPECT_TRUE(std::ranges::includes(after, before));
        EXPECT_TRUE(std::ranges::includes(outcome, after)) << "half made, at " << nth;
      }
      EXPECT_EQ(scenario.ask(world), answer) << nth;
      EXPECT_EQ(world.facts(), outcome) << nth;
    }
    EXPECT_GT(nth, 5);
  }
}

TEST(Scope, StopsAtItsQuotaAndTellsWhy) {
  World world;
  double whole = 0;
  {
    work::Scope const scope({});
    scenarios[0].ask(world);
    whole = scope.work();
  }
  for (double const share : {0.1, 0.5, 0.999}) {
    World other;
    work::Scope const outer({});
    work::Scope const scope({.work = whole * share});
    try {
      scenarios[0].ask(other);
      FAIL();
    } catch (work::Stopped const& stopped) {
      EXPECT_EQ(stopped.reason(), work::Reason::work);
      EXPECT_EQ(stopped.work(), outer.work());
      EXPECT_GT(stopped.work(), whole * share);
      EXPECT_EQ(std::string(stopped.what()).find("not finished within its work: "), 0);
    }
  }
  work::Scope const enough({.work = whole});
  World again;
  EXPECT_EQ(scenarios[0].ask(again), scenarios[0].ask(world));
}

TEST(Scope, StopsInTimeAndOnRequest) {
  auto const endless = [] {
    na::RationalApproximator rational;
    na::PowerSeriesApproximator(rational).machin_pi_bounds(100000);
  };
  std::stop_source source;
  int questions = 0;
  work::Scope const outer({.stop = source.get_token()});
  auto const reason_of = [&](work::Limits limits) {
    try {
      work::Scope const scope(std::move(limits));
      endless();
    } catch (work::Stopped const& stopped) {
      return stopped.reason();
    }
    return work::Reason::work;
  };
  auto const begin = Clock::now();
  EXPECT_EQ(reason_of({.deadline = begin + 50ms}), work::Reason::deadline);
  EXPECT_EQ(reason_of({.is_unwanted = [&] { return ++questions == 3; }}), work::Reason::request);
  EXPECT_EQ(questions, 3);
  EXPECT_THROW(reason_of({.is_unwanted = []() -> bool { throw std::bad_alloc(); }}),
               std::bad_alloc);
  EXPECT_GE(Clock::now() - begin, 50ms + 3 * 50ms);
  std::jthread const other([&] {
    std::this_thread::sleep_for(20ms);
    source.request_stop();
  });
  EXPECT_EQ(reason_of({}), work::Reason::request);
}

}  // namespace
}  // namespace zelk
