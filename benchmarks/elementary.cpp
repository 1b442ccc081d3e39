#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "benchmarks/peers.h"
#include "benchmarks/row.h"
#include "zelk/real/elementary_functions.h"

namespace zelk::bench {

namespace {

struct Function {
  char const* name;
  real::Interval (*ours)(real::ElementaryFunctions&, real::Interval const&, real::Accuracy);
  void (*arbs)(arb_t, arb_t const, slong);
};

constexpr Function functions[] = {
    {"exp", [](auto& f, auto const& x, auto accuracy) { return f.exp(x, accuracy); }, arb_exp},
    {"log", [](auto& f, auto const& x, auto accuracy) { return f.log(x, accuracy); }, arb_log},
    {"sin", [](auto& f, auto const& x, auto accuracy) { return f.sin(x, accuracy); }, arb_sin},
    {"atan", [](auto& f, auto const& x, auto accuracy) { return f.atan(x, accuracy); }, arb_atan},
    {"sqrt", [](auto& f, auto const& x, auto accuracy) { return f.sqrt(x, accuracy); }, arb_sqrt},
};

struct Point {
  char const* name;
  char const* x;
  unsigned exponent;  // of e^x: Arb's precision is relative
};

constexpr Point points[] = {
    {"1/3", "1/3", 0},
    {"1.228...", "5531054112435377/4503599627370496", 2},  // with 53 bits
    {"1000", "1000", 1443},
    {"10^6", "1000000", 0},
};

struct Query {
  Function function;
  mpq_class x;
  unsigned digits;
  slong arb_bits;
};

std::pair<Fmpq, Fmpq> by_arb(Query const& query, Fmpq const& x) {
  arb_t ball;
  arb_init(ball);
  arb_set_fmpq(ball, x, query.arb_bits);
  query.function.arbs(ball, ball, query.arb_bits);
  auto ends = ends_of(ball);
  arb_clear(ball);
  return ends;
}

void enter_row(Point const& point, Function const& function, unsigned digits) {
  constexpr unsigned guard = 24;
  unsigned const exponent = function.arbs == arb_exp ? point.exponent : 0;
  Query const query{function, mpq_class(point.x), digits,
                    static_cast<slong>(digits * 3.32193) + guard + exponent};
  mpq_class tolerance(1, 1);
  mpz_ui_pow_ui(tolerance.get_den_mpz_t(), 10, digits);

  static real::ElementaryFunctions elementary;
  auto const x = std::make_shared<real::Interval>(from_mpq<QNumber>(query.x));
  auto const ours = [=] { return function.ours(elementary, *x, query.digits); };
  auto const their_x = std::make_shared<Fmpq>(query.x);
  auto const theirs = [=] { return by_arb(query, *their_x); };
  // Two enclosures of one value, each as narrow as was asked for.
  auto const agree = [=](Answer const& a, Answer const& b) {
    return std::max(a[0], b[0]) <= std::min(a[1], b[1]) && a[1] - a[0] <= tolerance &&
           b[1] - b[0] <= tolerance;
  };
  Row row(std::string("Elementary ") + function.name + "(" + point.name + ")",
          std::to_string(digits) + " digits");
  row.enter(
      "zelk", [=] { benchmark::DoNotOptimize(ours()); },
      [=]() -> Answer {
        auto const value = ours();
        return {to_mpq(value.lower()), to_mpq(value.upper())};
      },
      agree);
  row.enter(
      "Arb", [=] { benchmark::DoNotOptimize(theirs()); },
      [=]() -> Answer {
        auto const ends = theirs();
        return {to_mpq(ends.first), to_mpq(ends.second)};
      },
      agree);
}

/// At a million, sines and logarithms: what other functions do there is no harder.
bool is_worth_it(Point const& point, Function const& function) {
  return point.x != std::string("1000000") || function.arbs == arb_sin || function.arbs == arb_log;
}

}  // namespace

void enter_elementary() {
  for (Function const& function : functions)
    for (Point const& point : points)
      if (is_worth_it(point, function))
        for (unsigned const digits : {10, 100, 1000, 10000, 100000})
          enter_row(point, function, digits);
}

}  // namespace zelk::bench
