#include <benchmark/benchmark.h>

#include <memory>
#include <new>
#include <type_traits>

#include "benchmarks/peers.h"
#include "benchmarks/row.h"

namespace zelk::bench {

namespace {

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

/// Pairs of operands, at even and odd places, none of them zero.
using Operands = std::vector<mpq_class>;

template <class Operation, class Q>
void enter(Row& row, std::string const& contender, Operands const& operands) {
  using Result = std::conditional_t<std::is_same_v<Operation, Less>, bool, Q>;
  auto numbers = std::make_shared<std::vector<Q>>();
  for (mpq_class const& q : operands) numbers->push_back(from_mpq<Q>(q));
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

template <class Operation>
void enter_row(std::string const& subject, std::string const& name, Operands const& operands) {
  Row row(subject, name, operands.size() / 2);
  enter<Operation, QNumber>(row, "zelk", operands);
  enter<Operation, Fmpq>(row, "FLINT", operands);
  enter<Operation, mpq_class>(row, "GMP", operands);
  // Beyond words Boost's own integers take too long to wait for.
  if (mpz_sizeinbase(operands[0].get_num_mpz_t(), 2) <= GMP_NUMB_BITS)
    enter<Operation, cpp_rational>(row, "Boost", operands);
}

class Source {
 public:
  /// Parts from 1 to `limit`, either sign, in lowest terms.
  Operands up_to(mpz_class const& limit, bool integers = false) {
    Operands operands(2048);
    for (mpq_class& q : operands) {
      q = mpq_class(random.get_z_range(limit) + 1,
                    integers ? mpz_class(1) : mpz_class(random.get_z_range(limit) + 1));
      q.canonicalize();
      if (random.get_z_bits(1) != 0) q = -q;
    }
    return operands;
  }

  /// Parts of just so many bits, either sign.
  Operands of_bits(unsigned bits) {
    Operands operands(128);
    mpz_class const half = mpz_class(1) << (bits - 1);
    for (mpq_class& q : operands) {
      do {
        q.get_num() = half + random.get_z_bits(bits - 1);
        q.get_den() = half + random.get_z_bits(bits - 1);
      } while (gcd(q.get_num(), q.get_den()) != 1);
      if (random.get_z_bits(1) != 0) q = -q;
    }
    return operands;
  }

 private:
  gmp_randclass random{gmp_randinit_mt};
};

}  // namespace

void enter_arithmetic() {
  Source source;
  for (bool const integers : {false, true}) {
    std::string const subject = integers ? "Integers up to 1000" : "Fractions, parts up to 1000";
    Operands const operands = source.up_to(1000, integers);
    enter_row<Sum>(subject, "r = a + b", operands);
    enter_row<Product>(subject, "r = a * b", operands);
    enter_row<Quotient>(subject, "r = a / b", operands);
    enter_row<Less>(subject, "a < b", operands);
    enter_row<Added>(subject, "r = a, r += b", operands);
    enter_row<Multiplied>(subject, "r = a, r *= b", operands);
  }

  std::string const words = "Fractions, parts up to 2^31";
  Operands const operands = source.up_to(mpz_class(1) << 31);
  enter_row<Sum>(words, "r = a + b", operands);
  enter_row<Product>(words, "r = a * b", operands);

  for (unsigned const bits : {128U, 512U, 2048U, 8192U}) {
    std::string const subject = "Fractions, parts of " + std::to_string(bits) + " bits";
    Operands const big = source.of_bits(bits);
    enter_row<Sum>(subject, "r = a + b", big);
    enter_row<Difference>(subject, "r = a - b", big);
    enter_row<Product>(subject, "r = a * b", big);
    enter_row<Quotient>(subject, "r = a / b", big);
    enter_row<Less>(subject, "a < b", big);
    enter_row<Added>(subject, "r = a, r += b", big);
    enter_row<Multiplied>(subject, "r = a, r *= b", big);
    enter_row<NewSum>(subject, "Q r(a + b)", big);
    enter_row<NewProduct>(subject, "Q r(a * b)", big);
  }
}

}  // namespace zelk::bench
