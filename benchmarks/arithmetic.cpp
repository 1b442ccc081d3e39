#include <benchmark/benchmark.h>

#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "benchmarks/peers.h"
#include "benchmarks/random_rationals.h"
#include "benchmarks/row.h"

namespace zelk::bench {

namespace {

// So many that branch predictors do not learn them.
constexpr std::size_t small_pairs = 16384;

// What is timed: r = a + b and its like, r being a variable used again and again, as the peers'
// three-address functions have it. GMP's and Boost's expression templates come down to the same.

struct Sum {
  template <class Q>
  static void assign(Q& r, Q const& a, Q const& b) {
    r = a + b;
  }
  static void assign(Fmpq& r, Fmpq const& a, Fmpq const& b) { fmpq_add(r, a, b); }
};

struct Difference {
  template <class Q>
  static void assign(Q& r, Q const& a, Q const& b) {
    r = a - b;
  }
  static void assign(Fmpq& r, Fmpq const& a, Fmpq const& b) { fmpq_sub(r, a, b); }
};

struct Product {
  template <class Q>
  static void assign(Q& r, Q const& a, Q const& b) {
    r = a * b;
  }
  static void assign(Fmpq& r, Fmpq const& a, Fmpq const& b) { fmpq_mul(r, a, b); }
};

struct Quotient {
  template <class Q>
  static void assign(Q& r, Q const& a, Q const& b) {
    r = a / b;
  }
  static void assign(Fmpq& r, Fmpq const& a, Fmpq const& b) { fmpq_div(r, a, b); }
};

struct Less {
  template <class Q>
  static void assign(bool& r, Q const& a, Q const& b) {
    r = a < b;
  }
};

struct Added {
  template <class Q>
  static void assign(Q& r, Q const& a, Q const& b) {
    r = a, r += b;
  }
};

struct Multiplied {
  template <class Q>
  static void assign(Q& r, Q const& a, Q const& b) {
    r = a, r *= b;
  }
};

/// A new variable each time, in the place of the last.
struct NewSum {
  template <class Q>
  static void assign(Q& r, Q const& a, Q const& b) {
    std::destroy_at(&r);
    ::new (&r) Q(a + b);
  }
  static void assign(Fmpq& r, Fmpq const& a, Fmpq const& b) {
    std::destroy_at(&r);
    fmpq_add(*::new (&r) Fmpq(), a, b);
  }
};

struct NewProduct {
  template <class Q>
  static void assign(Q& r, Q const& a, Q const& b) {
    std::destroy_at(&r);
    ::new (&r) Q(a * b);
  }
  static void assign(Fmpq& r, Fmpq const& a, Fmpq const& b) {
    std::destroy_at(&r);
    fmpq_mul(*::new (&r) Fmpq(), a, b);
  }
};

/// Pairs of operands, at even and odd places, none of them zero. Each contender's own are made once
/// for all operations.
template <class Q>
using Numbers = std::shared_ptr<std::vector<Q> const>;

template <class Q>
Numbers<Q> numbers_of(std::vector<mpq_class> const& operands) {
  std::vector<Q> numbers;
  for (mpq_class const& q : operands) numbers.push_back(from_mpq<Q>(q));
  return std::make_shared<std::vector<Q> const>(std::move(numbers));
}

template <class Operation, class Q>
void enter(Row& row, std::string const& contender, Numbers<Q> const& numbers) {
  if (!numbers) return;
  using Result = std::conditional_t<std::is_same_v<Operation, Less>, bool, Q>;
  auto const work = [numbers, r = Result()]() mutable {
    for (std::size_t i = 0; i < numbers->size(); i += 2) {
      Operation::assign(r, (*numbers)[i], (*numbers)[i + 1]);
      benchmark::DoNotOptimize(r);
    }
  };
  auto const answer = [numbers] {
    Answer all;
    Result r{};
    for (std::size_t i = 0; i < numbers->size(); i += 2) {
      Operation::assign(r, (*numbers)[i], (*numbers)[i + 1]);
      all.push_back(to_mpq(r));
    }
    return all;
  };
  row.enter(contender, work, answer);
}

/// All operations on the same operands.
class Rows {
 public:
  Rows(std::string name, std::vector<mpq_class> const& operands)
      : subject(std::move(name)),
        ours(numbers_of<QNumber>(operands)),
        flint(numbers_of<Fmpq>(operands)),
        gmp(numbers_of<mpq_class>(operands)) {
    // Beyond words Boost's own integers take too long to wait for.
    if (mpz_sizeinbase(operands[0].get_num_mpz_t(), 2) <= GMP_NUMB_BITS)
      boost = numbers_of<cpp_rational>(operands);
  }

  void enter_all() const {
    enter_row<Sum>("r = a + b");
    enter_row<Difference>("r = a - b");
    enter_row<Product>("r = a * b");
    enter_row<Quotient>("r = a / b");
    enter_row<Less>("a < b");
    enter_row<Added>("r = a, r += b");
    enter_row<Multiplied>("r = a, r *= b");
    enter_row<NewSum>("Q r(a + b)");
    enter_row<NewProduct>("Q r(a * b)");
  }

 private:
  template <class Operation>
  void enter_row(std::string const& name) const {
    Row row(subject, name, ours->size() / 2);
    enter<Operation>(row, "zelk", ours);
    enter<Operation>(row, "FLINT", flint);
    enter<Operation>(row, "GMP", gmp);
    enter<Operation>(row, "Boost", boost);
  }

  std::string subject;
  Numbers<QNumber> ours;
  Numbers<Fmpq> flint;
  Numbers<mpq_class> gmp;
  Numbers<cpp_rational> boost;  // null where it does not take part
};

}  // namespace

void enter_arithmetic() {
  RandomRationals random;
  Rows("Fractions, parts up to 1000", random.up_to(1000, small_pairs)).enter_all();
  Rows("Integers up to 1000", random.integers_up_to(1000, small_pairs)).enter_all();
  for (unsigned const bits : {31U, 40U, 62U})
    Rows("Fractions, parts up to 2^" + std::to_string(bits),
         random.up_to(mpz_class(1) << bits, small_pairs))
        .enter_all();
  for (unsigned const bits : {128U, 512U, 2048U, 8192U})
    Rows("Fractions, parts of " + std::to_string(bits) + " bits",
         random.of_bits(bits, bits == 128 ? 1024 : 64))
        .enter_all();
}

}  // namespace zelk::bench
