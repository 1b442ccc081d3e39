#include <gmpxx.h>

#include <array>
#include <climits>
#include <optional>

#include "tests/fuzz/body.h"
#include "tests/support/random_number.h"

namespace zelk::test {
namespace {

/// A number beside what it should be.
struct Slot {
  std::optional<QNumber> number = QNumber();
  mpq_class value;
  bool big = false;

  /// Where an assignment would keep the form.
  void renew(QNumber const& q, mpq_class const& expected_value, bool expected_form) {
    number.emplace(q);
    value = expected_value;
    big = expected_form;
  }
};

bool fits(mpz_class const& n) { return mpz_cmpabs_ui(n.get_mpz_t(), LONG_MAX) <= 0; }
bool fits(mpq_class const& q) { return fits(q.get_num()) && fits(q.get_den()); }

/// No small word is -2^63: that does not fit, and whatever does not fit should be big.
void check_holds(QNumber const& q, mpq_class const& value, bool big) {
  CHECK(mpz_cmp(q.numerator(), value.get_num_mpz_t()) == 0);
  CHECK(mpz_cmp(q.denominator(), value.get_den_mpz_t()) == 0);
  CHECK(q.is_big() == big);
  CHECK(q.sign() == sgn(value) && q.is_zero() == (value == 0));
  CHECK(q.is_integer() == (value.get_den() == 1));
}

void construct(unsigned kind, Slot& a, ByteReader& next) {
  long const n = corner_word(next);
  long const d = corner_word(next);
  if (kind == 0) {
    a.renew(n, n, n == LONG_MIN);
  } else if (kind == 1) {
    if (d != 0) a.renew(QNumber(n, d), mpq_class(n) / d, n == LONG_MIN || d == LONG_MIN);
  } else {  // not in lowest terms, and from the library's own scratch
    auto& numerator = QNumber::gmp_tmp[next() % 4];
    auto& denominator = QNumber::gmp_tmp[next() % 4];
    mpz_mul_si(numerator, corner_integer(next).get_mpz_t(), n);
    mpz_mul_si(denominator, corner_integer(next).get_mpz_t(), n);
    if (mpz_sgn(denominator) == 0) return;
    mpq_class value{mpz_class(numerator), mpz_class(denominator)};
    value.canonicalize();
    if (kind == 2)
      a.renew(QNumber::from_mpz(numerator, denominator), value, !fits(value));
    else
      a.renew(QNumber::big_from_mpz(numerator, denominator), value, true);
  }
}

/// Over the least common denominator the numerators and their sum have to fit as the result has.
bool sum_fits(mpq_class const& a, mpq_class const& b) {
  mpz_class const common = lcm(a.get_den(), b.get_den());
  mpz_class const x = a.get_num() * (common / a.get_den());
  mpz_class const y = b.get_num() * (common / b.get_den());
  return fits(x) && fits(y) && fits(mpz_class(x + y)) && fits(mpq_class(a + b));
}

/// a op b, in a itself or made anew in c.
void combine(char op, Slot& a, Slot const& b, bool in_place, Slot& c) {
  if (op == '/' && b.value == 0) return;
  mpq_class const addend = op == '-' ? mpq_class(-b.value) : b.value;
  mpq_class const value = op == '*'   ? mpq_class(a.value * b.value)
                          : op == '/' ? mpq_class(a.value / b.value)
                                      : mpq_class(a.value + addend);
  bool const fitting = op == '*' || op == '/' ? fits(value) : sum_fits(a.value, addend);
  bool const back = op == '*' && b.value == 0 && !b.big && a.value.get_den() != 1;
  bool const big = (a.big || b.big || !fitting) && !back;
  QNumber& x = *a.number;
  QNumber const& y = *b.number;
  if (!in_place) {
    c.renew(op == '+' ? x + y : op == '-' ? x - y : op == '*' ? x * y : x / y, value, big);
    return;
  }
  op == '+' ? x += y : op == '-' ? x -= y : op == '*' ? x *= y : x /= y;
  a.value = value;
  a.big = big;
}

void split(Slot& a) {
  mpz_class whole;
  auto const divide = a.big ? mpz_fdiv_q : mpz_tdiv_q;
  divide(whole.get_mpz_t(), a.value.get_num_mpz_t(), a.value.get_den_mpz_t());
  check_holds(a.number->self_decompose(), whole, a.big);
  a.value -= whole;
}

/// c becomes hard to tell from a, or what takes a to an end of the words.
void partner(Slot const& a, Slot& c, ByteReader& next) {
  unsigned const kind = next();
  mpz_class const end = (mpz_class(1) << 63) - kind / 4 % 2;
  mpq_class value = kind / 8 % 2 == 0 ? end : mpz_class(-end);
  if (kind % 4 == 0)
    value -= a.value;
  else if (kind % 4 == 1 && a.value != 0)
    value /= a.value;
  else
    value = a.value + (corner_rational(next) >> 4 * next());
  c.renew(to_number(value), value, !fits(value));
}

}  // namespace

void run_numbers(Bytes bytes) {
  ByteReader next{bytes};
  std::array<Slot, 4> slots;
  while (!next.done()) {
    unsigned const op = next() % 19;
    unsigned const which = next();
    Slot& a = slots[which % 4];
    Slot const& b = slots[which / 4 % 4];
    Slot& c = slots[which / 16 % 4];
    if (op < 4) {
      construct(op, a, next);
    } else if (op < 12) {
      combine("+-*/"[op % 4], a, b, op < 8, c);
    } else if (op == 12) {
      a.number->negate();
      a.value = -a.value;
    } else if (op == 13 && a.value != 0) {
      c.renew(a.number->inv(), 1 / a.value, a.big);
    } else if (op == 14) {
      c.renew(abs(*a.number), abs(a.value), a.big);
    } else if (op == 15) {
      split(a);
    } else if (op == 16) {
      *a.number = *b.number;
      a.value = b.value;
      a.big = a.big || b.big;
    } else if (op == 17) {
      a.renew(QNumber(*b.number), b.value, b.big);
    } else {
      partner(a, c, next);
    }
    // A host may leave anything here between two operations.
    for (auto& scratch : QNumber::gmp_tmp) mpz_set_si(scratch, -6);
    for (Slot const& s : slots) {
      check_holds(*s.number, s.value, s.big);
      CHECK((*a.number == *s.number) == (a.value == s.value));
      CHECK((*a.number < *s.number) == (a.value < s.value));
      CHECK((*s.number < *a.number) == (s.value < a.value));
    }
    if (!fits(mpz_class(a.value.get_num() * a.value.get_den() >> 4000))) a.renew({}, 0, false);
  }
}

}  // namespace zelk::test
