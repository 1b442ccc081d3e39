#include <benchmark/benchmark.h>

#include <algorithm>
#include <utility>

#include "benchmarks/peers.h"
#include "benchmarks/plain_loops.h"
#include "benchmarks/row.h"
#include "tests/support/plain_series.h"
#include "zelk/approx/power_series_approximator.h"

// What arb_const_pi calls when the value it has kept does not reach: no header declares it.
extern "C" void arb_const_pi_chudnovsky_eval(arb_t pi, slong bits);

namespace zelk::bench {

namespace {

enum class Function { exp, sin, pi };

/// A value asked for: pi has no use for x.
struct Query {
  Function function;
  mpq_class x;
  unsigned digits;

  mpq_class tolerance() const {
    mpz_class power;
    mpz_ui_pow_ui(power.get_mpz_t(), 10, digits);
    return {1, power};
  }
};

/// By new objects, which know nothing yet.
na::PowerSeriesApproximator::Bounds by_library(Query const& query, QNumber const& x) {
  na::RationalApproximator approximator;
  na::PowerSeriesApproximator series(approximator);
  switch (query.function) {
    case Function::exp:
      return series.maclaurin_exp_bounds(x, query.digits);
    case Function::sin:
      return series.maclaurin_sin_bounds(x, query.digits);
    default:
      return series.machin_pi_bounds(query.digits);
  }
}

/// As many new tables as the library's objects have, filled as the definitions say.
plain::Bounds by_plain_evaluation(Query const& query, QNumber const& x) {
  plain::RationalApproximator rational;
  na::PowerSeriesApproximator::SeriesCache exp_records, sin_records;
  na::PowerSeriesApproximator::PiCache pi_records;
  unsigned const digits = query.digits;
  switch (query.function) {
    case Function::exp:
      return plain::answer(exp_records, std::pair(x, digits),
                           [&] { return plain::exp_record(x, digits); })
          .bounds;
    case Function::sin:
      return plain::answer(sin_records, std::pair(x, digits),
                           [&] { return plain::sin_record(x, digits); })
          .bounds;
    default:
      return plain::answer(pi_records, digits, [&] { return plain::pi_bounds(rational, digits); });
  }
}

template <class Q>
Ends<Q> by_loop(Query const& query, Q const& x) {
  Q const epsilon(query.tolerance());
  switch (query.function) {
    case Function::exp:
      return exp_loop(x, epsilon);
    case Function::sin:
      return sin_loop(x, epsilon);
    default:
      return pi_loop(epsilon);
  }
}

/// By Arb at a precision somewhat above the digits; the ball then as two exact rationals.
Ends<Fmpq> by_arb(Query const& query, Fmpq const& x) {
  auto const bits = static_cast<slong>(query.digits * 3.32193) + 16;
  arb_t ball;
  arb_init(ball);
  arb_set_fmpq(ball, x, bits);
  switch (query.function) {
    case Function::exp:
      arb_exp(ball, ball, bits);
      break;
    case Function::sin:
      arb_sin(ball, ball, bits);
      break;
    default:
      arb_const_pi_chudnovsky_eval(ball, bits);
  }
  auto ends = ends_of(ball);
  arb_clear(ball);
  return ends;
}

/// The least that the bounds of pi can cost: both ends of the enclosure expanded term by term, the
/// recurrence of their convergents, and a copy of every convergent, as the caches keep them.
class BareExpansion {
 public:
  explicit BareExpansion(unsigned digits) : ends(plain::machin_ends(plain::tolerance(digits))) {
    na::RationalApproximator approximator;
    na::PowerSeriesApproximator(approximator).machin_pi_bounds(digits);
    length = static_cast<unsigned>(approximator.approximations().size() / 2);
  }

  /// What would have gone into the caches.
  struct Entry {
    unsigned precision;
    mpz_class h, k;
  };

  std::vector<Entry> operator()() const {
    std::vector<Entry> entries;
    for (QNumber const* end : {&ends.first, &ends.second}) {
      mpz_class n(end->numerator().get()), d(end->denominator().get());
      mpz_class term, h = 1, h0 = 0, k = 0, k0 = 1;
      for (unsigned precision = 1; precision <= length; ++precision) {
        if (d != 0) {  // else h/k is the number itself
          mpz_fdiv_qr(term.get_mpz_t(), n.get_mpz_t(), n.get_mpz_t(), d.get_mpz_t());
          swap(n, d);
          mpz_addmul(h0.get_mpz_t(), term.get_mpz_t(), h.get_mpz_t());
          mpz_addmul(k0.get_mpz_t(), term.get_mpz_t(), k.get_mpz_t());
          swap(h, h0);
          swap(k, k0);
        }
        entries.push_back({precision, h, k});
      }
    }
    return entries;
  }

  Answer answer() const {
    auto const entries = (*this)();
    auto const& lower = entries[length - 1];
    auto const& upper = entries.back();
    return {mpq_class(lower.h, lower.k), mpq_class(upper.h, upper.k)};
  }

 private:
  plain::Bounds ends;
  unsigned length;
};

enum Peers : unsigned { plain_evaluation = 1, loops = 2, arb = 4, bare_expansion = 8 };

template <class Q, class Compute>
void enter(Row& row, std::string const& contender, Query const& query, Compute compute,
           Row::Agree const& agree = std::equal_to<Answer>()) {
  auto const x = std::make_shared<Q>(from_mpq<Q>(query.x));
  row.enter(
      contender, [=] { benchmark::DoNotOptimize(compute(query, *x)); },
      [=]() -> Answer {
        auto const ends = compute(query, *x);
        return {to_mpq(ends.first), to_mpq(ends.second)};
      },
      agree);
}

void enter_row(std::string const& subject, Query const& query, unsigned peers) {
  Row row(subject, std::to_string(query.digits) + " digits");
  enter<QNumber>(row, "zelk", query, by_library);
  if ((peers & plain_evaluation) != 0)
    enter<QNumber>(row, "plain evaluation", query, by_plain_evaluation);
  if ((peers & loops) != 0) {
    enter<mpq_class>(row, "loop on GMP's mpq", query, by_loop<mpq_class>);
    enter<Fmpq>(row, "loop on FLINT's fmpq", query, by_loop<Fmpq>);
  }
  if ((peers & arb) != 0) {
    // Another enclosure of the same value, as narrow as was asked for.
    auto const agree = [epsilon = query.tolerance()](Answer const& ours, Answer const& theirs) {
      return std::max(ours[0], theirs[0]) <= std::min(ours[1], theirs[1]) &&
             theirs[1] - theirs[0] <= epsilon;
    };
    enter<Fmpq>(row, "Arb", query, by_arb, agree);
  }
  if ((peers & bare_expansion) != 0) {
    // Found out when first needed: it takes a while.
    auto const bare = [digits = query.digits]() -> BareExpansion const& {
      static BareExpansion const expansion(digits);
      return expansion;
    };
    row.enter(
        "bare expansion", [bare] { benchmark::DoNotOptimize(bare()()); },
        [bare] { return bare().answer(); });
  }
}

struct Group {
  char const* subject;
  Function function;
  char const* x;
  std::vector<std::pair<unsigned, unsigned>> digits_and_peers;
};

}  // namespace

void enter_series() {
  // Each peer goes as far as it can be waited for.
  Group const groups[] = {
      {"exp(1/3)",
       Function::exp,
       "1/3",
       {{3, plain_evaluation},
        {10, plain_evaluation | loops | arb},
        {30, plain_evaluation | loops | arb},
        {100, plain_evaluation | loops | arb},
        {300, plain_evaluation | loops | arb},
        {1000, plain_evaluation | loops | arb},
        {10000, arb},
        {100000, arb}}},
      {"exp(355/113)",
       Function::exp,
       "355/113",
       {{20, plain_evaluation},
        {100, plain_evaluation},
        {300, plain_evaluation},
        {1000, arb},
        {10000, arb}}},
      {"sin(1/3)",
       Function::sin,
       "1/3",
       {{10, plain_evaluation | loops | arb},
        {30, plain_evaluation | loops | arb},
        {100, plain_evaluation | loops | arb},
        {300, plain_evaluation | loops | arb},
        {1000, plain_evaluation | loops | arb},
        {10000, arb}}},
      {"sin(1/2)", Function::sin, "1/2", {{3, plain_evaluation}}},
      {"sin(314/113)",
       Function::sin,
       "314/113",
       {{20, plain_evaluation}, {100, plain_evaluation}, {300, plain_evaluation}}},
      {"pi",
       Function::pi,
       "0",
       {{10, plain_evaluation | loops | arb},
        {30, plain_evaluation | loops | arb},
        {50, plain_evaluation | loops | arb},
        {100, plain_evaluation | loops | arb},
        {300, loops | arb},
        {1000, arb | bare_expansion}}},
  };
  for (Group const& group : groups)
    for (auto const& [digits, peers] : group.digits_and_peers)
      enter_row(group.subject, {group.function, mpq_class(group.x), digits}, peers);
}

}  // namespace zelk::bench
