#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <utility>

#include "benchmarks/peers.h"
#include "benchmarks/plain_loops.h"
#include "benchmarks/random_rationals.h"
#include "benchmarks/row.h"
#include "zelk/approx/power_series_approximator.h"

namespace zelk::bench {

namespace {

// The same computation for each contender, as one would write it down, in place where that can be.

template <class Q>
using Numbers = std::vector<Q>;

struct Sorting {
  template <class Q>
  static Numbers<Q> compute(Numbers<Q> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return numbers;
  }
};

struct Summation {
  template <class Q>
  static Numbers<Q> compute(Numbers<Q> const& numbers) {
    Q sum;
    for (Q const& q : numbers) sum += q;
    return {sum};
  }
};

// FLINT has these in one.
template <class Q>
void add_product(Q& r, Q const& a, Q const& b) {
  r += a * b;
}
void add_product(Fmpq& r, Fmpq const& a, Fmpq const& b) { fmpq_addmul(r, a, b); }

template <class Q>
void subtract_product(Q& r, Q const& a, Q const& b) {
  r -= a * b;
}
void subtract_product(Fmpq& r, Fmpq const& a, Fmpq const& b) { fmpq_submul(r, a, b); }

struct DotProduct {
  template <class Q>
  static Numbers<Q> compute(Numbers<Q> const& numbers) {
    Q sum;
    for (std::size_t i = 0; i < numbers.size(); i += 2)
      add_product(sum, numbers[i], numbers[i + 1]);
    return {sum};
  }
};

/// A polynomial of degree 15 at the numbers after its coefficients.
struct Horner {
  template <class Q>
  static Numbers<Q> compute(Numbers<Q> const& numbers) {
    constexpr std::size_t degree = 15;
    Numbers<Q> values;
    for (std::size_t i = degree + 1; i < numbers.size(); ++i) {
      Q value = numbers[degree];
      for (std::size_t k = degree; k > 0; --k) {
        value *= numbers[i];
        value += numbers[k - 1];
      }
      values.push_back(std::move(value));
    }
    return values;
  }
};

/// The determinant of Hilbert's matrix of order 40, whose rows are unit fractions.
struct Elimination {
  template <class Q>
  static Numbers<Q> compute(Numbers<Q> const& /*none*/) {
    constexpr unsigned long order = 40;
    std::array<Numbers<Q>, order> rows;
    for (unsigned long i = 0; i < order; ++i)
      for (unsigned long j = 0; j < order; ++j) rows[i].push_back(Q(1UL) / Q(i + j + 1));
    Q determinant(1UL);
    for (unsigned long k = 0; k < order; ++k) {
      determinant *= rows[k][k];
      for (unsigned long i = k + 1; i < order; ++i) {
        Q const factor = rows[i][k] / rows[k][k];
        for (unsigned long j = k + 1; j < order; ++j)
          subtract_product(rows[i][j], factor, rows[k][j]);
      }
    }
    return {determinant};
  }
};

constexpr unsigned long harmonic_terms = 10000;

struct Harmonic {
  template <class Q>
  static Numbers<Q> compute(Numbers<Q> const& /*none*/) {
    Q sum;
    for (unsigned long n = 1; n <= harmonic_terms; ++n) sum += Q(1UL) / Q(n);
    return {sum};
  }
};

/// FLINT's function for harmonic numbers, which adds by halves.
struct OwnHarmonic {
  static Numbers<Fmpq> compute(Numbers<Fmpq> const& /*none*/) {
    Numbers<Fmpq> sum(1);
    fmpq_harmonic_ui(sum[0], harmonic_terms);
    return sum;
  }
};

/// Both ends of e^x to `grid_digits` digits at 100 points x = i/50.
constexpr unsigned grid_digits = 6;

template <class Q, class Bounds>
Numbers<Q> ends_on_grid(Bounds const& bounds) {
  Numbers<Q> ends;
  for (unsigned long i = 1; i <= 100; ++i) {
    auto const [lower, upper] = bounds(Q(i) / Q(50UL));
    ends.push_back(lower);
    ends.push_back(upper);
  }
  return ends;
}

struct Grid {
  template <class Q>
  static Numbers<Q> compute(Numbers<Q> const& /*none*/) {
    Q const epsilon = Q(1UL) / Q(1000000UL);
    return ends_on_grid<Q>([&](Q const& x) { return exp_loop(x, epsilon); });
  }
  static Numbers<QNumber> compute(Numbers<QNumber> const& /*none*/) {
    na::RationalApproximator approximator;
    na::PowerSeriesApproximator series(approximator);
    return ends_on_grid<QNumber>(
        [&](QNumber const& x) { return series.maclaurin_exp_bounds(x, grid_digits); });
  }
};

/// Whether the ends of each pair hold what those of the other do, and are as near to each other.
bool are_enclosures_of_one(Answer const& ours, Answer const& theirs) {
  mpq_class const epsilon(1, 1000000);
  for (std::size_t i = 0; i < ours.size(); i += 2)
    if (theirs[i] > ours[i + 1] || ours[i] > theirs[i + 1] || theirs[i + 1] - theirs[i] >= epsilon)
      return false;
  return ours.size() == theirs.size();
}

/// A contender's numbers stand ready; what is timed begins with them.
template <class Computation, class Q>
void enter(Row& row, std::string const& contender, std::vector<mpq_class> const& operands,
           Row::Agree const& agree = std::equal_to<Answer>()) {
  auto numbers = std::make_shared<Numbers<Q>>();
  for (mpq_class const& q : operands) numbers->push_back(from_mpq<Q>(q));
  row.enter(
      contender, [numbers] { benchmark::DoNotOptimize(Computation::compute(*numbers)); },
      [numbers] {
        Answer all;
        for (Q const& q : Computation::compute(*numbers)) all.push_back(to_mpq(q));
        return all;
      },
      agree);
}

template <class Computation>
Row enter_row(std::string const& name, std::vector<mpq_class> const& operands = {},
              Row::Agree const& agree = std::equal_to<Answer>()) {
  Row row("Whole computation", name);
  enter<Computation, QNumber>(row, "zelk", operands);
  enter<Computation, Fmpq>(row, "FLINT", operands, agree);
  enter<Computation, mpq_class>(row, "GMP", operands, agree);
  return row;
}

}  // namespace

void enter_whole() {
  RandomRationals random;
  enter_row<Sorting>("sorting 100,000 fractions, parts up to 1000", random.up_to(1000, 50000));
  enter_row<Sorting>("sorting 100,000 fractions, parts up to 2^31",
                     random.up_to(mpz_class(1) << 31, 50000));
  enter_row<Sorting>("sorting 20,000 fractions, parts of 128 bits", random.of_bits(128, 10000));
  enter_row<Summation>("sum of 1000 integers up to 2^40",
                       random.integers_up_to(mpz_class(1) << 40, 500));
  enter_row<Summation>("sum of 200 fractions, parts up to 1000", random.up_to(1000, 100));
  enter_row<DotProduct>("dot product of 100 pairs, parts up to 1000", random.up_to(1000, 100));
  enter_row<Horner>("polynomial of degree 15 at 100 points, parts up to 1000",
                    random.up_to(1000, 58));
  enter_row<Elimination>("determinant of Hilbert's matrix of order 40");
  Row harmonic = enter_row<Harmonic>("sum of 1/n up to 10,000");
  enter<OwnHarmonic, Fmpq>(harmonic, "FLINT's function", {});
  enter_row<Grid>("e^x to 6 digits at 100 points", {}, are_enclosures_of_one);
}

}  // namespace zelk::bench
