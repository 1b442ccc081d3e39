#pragma once

#include <bit>
#include <cassert>
#include <climits>
#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>

#include <gmp.h>

#include "zelk/config.h"
#include "zelk/numbers/gcd_cache.h"
#include "zelk/numbers/integer_view.h"

namespace zelk {

static_assert(sizeof(long) == 8,
              "zelk holds small numbers in `long`, which must have 64 bits here");
static_assert(sizeof(void*) == sizeof(long), "zelk holds a pointer in a `long`");
static_assert(GMP_NUMB_BITS == 64, "zelk needs a GMP with 64-bit limbs and no nails");
// Before, GMP released the digits of every integer, also those that it had not allocated.
static_assert(__GNU_MP_VERSION * 100 + __GNU_MP_VERSION_MINOR >= 602, "zelk needs GMP 6.2");

/// Integers that fill a word and whose upper half `long` does not have.
template <class T>
inline constexpr bool is_unsigned_word = std::unsigned_integral<T> && sizeof(T) == sizeof(long);

/// Arguments that a conversion to `long` could change silently.
template <class T>
inline constexpr bool may_not_fit = std::floating_point<T> ||
                                    (!std::is_class_v<T> && sizeof(T) > sizeof(long));
template <class T>
requires(std::is_enum_v<T>) inline constexpr bool may_not_fit<T> =
    is_unsigned_word<std::underlying_type_t<T>>;

class QNumber;

/// Exchanges values and forms.
template <int = 0>
void swap(QNumber& a, QNumber& b) noexcept;

namespace detail {
struct FixedFraction;
struct SharedDigits;
}  // namespace detail

/// An exact rational number, always in lowest terms with a positive denominator; zero is 0/1.
///
/// While both parts fit in 64 bits the number is its two machine words (small form). Beyond that
/// it owns one heap block with two GMP integers (big form). Values, order and arithmetic never
/// depend on the form, only the cost does, with two exceptions: `self_decompose` rounds a negative
/// non-integer differently, and `Hasher<QNumber>` reads the limbs of a big form.
///
/// Forms: an operation on small operands stays small as long as its result and the intermediate
/// products fit in ±(2^63 - 1); otherwise its target moves to big form and stays there, through
/// assignment too, whatever values it takes later. One operation leads back: a big non-integer
/// multiplied by a small zero becomes the small zero.
///
/// Cost: in small form `+ - * / < ==` are a few machine instructions and at most two gcds of words,
/// three for `/`, from `gcd_cache` when their operands are small; nothing is allocated and GMP is
/// not called. Moving and swapping are constant in either form. In
/// big form, with parts of n bits, sum, product, quotient and construction from two integers take
/// gcds and so O(M(n) log n), where M(n) is the time of GMP's multiplication; `self_decompose` and
/// a comparison take O(M(n)) at most; everything else is linear. Fractions are added and multiplied
/// with as few and as short gcds as can be (Knuth, The Art of Computer Programming, 4.5.1).
///
/// Errors: a zero denominator, division by zero and the inverse of zero throw `DivisionByZero`, a
/// `std::domain_error`, before anything is written. When a block cannot be had, `std::bad_alloc` is
/// thrown and the target keeps its value. GMP ends the process when it cannot get memory for the
/// digits themselves.
class ZELK_EXPORT QNumber {
 public:
  /// Scratch for the big forms, four integers for each thread, never holding anything from one
  /// operation to the next, so a host may use its own thread's between calls too. Ready before any
  /// object of the program or the thread is initialised, and usable after their destruction.
  ///
  /// GMP enlarges them as needed. They are given back when a thread ends in which numbers in big
  /// form were computed with.
  static constinit thread_local mpz_t gmp_tmp[4];

  /// Gives back what this thread's scratch integers hold: for threads that live long after large
  /// work. Costs nothing but the memory, taken again when it is needed.
  static void release_scratch() noexcept;

  /// 0.
  QNumber() : num(0), den(1) {}

  /// n/1, without any gcd. In big form only for -2^63.
  QNumber(long n) : num(n), den(1) {
    if (n == LONG_MIN) [[unlikely]]
      make_big();
  }

  /// n/d in lowest terms. In big form exactly when n or d is -2^63.
  /// Throws: DivisionByZero when d is 0.
  QNumber(long n, long d) : num(n), den(d) {
    // One test for a d of 0 or -2^63: without the sign bit, both are 0.
    if (n == LONG_MIN || (d & LONG_MAX) == 0) [[unlikely]]
      become_extreme();
    else if (n == 0)
      den = 1;
    else
      reduce_words();
  }

  /// Unsigned words, exactly: as the same values in `long`, and in big form where one of them is
  /// beyond 2^63 - 1. Throws: DivisionByZero when d is 0.
  template <class T>
  requires(is_unsigned_word<T>) QNumber(T n) : num(static_cast<long>(n)), den(1) {
    if (num < 0) [[unlikely]]
      become_unsigned(n, 1, false);
  }
  template <class N, class D>
  requires(std::integral<N>&& std::integral<D> && (is_unsigned_word<N> || is_unsigned_word<D>))
      QNumber(N n, D d)
      : num(static_cast<long>(n)), den(static_cast<long>(d)) {
    if ((n > 0 && num < 0) || (d > 0 && den < 0)) [[unlikely]] {
      become_unsigned(n < 0 ? ~static_cast<unsigned long>(n) + 1 : static_cast<unsigned long>(n),
                      d < 0 ? ~static_cast<unsigned long>(d) + 1 : static_cast<unsigned long>(d),
                      (n < 0) != (d < 0));
    } else {
      *this = QNumber(num, den);
    }
  }

  /// Refused: numbers that a conversion to words could change silently.
  template <class T>
  requires(may_not_fit<T>) QNumber(T)
  = delete;
  template <class N, class D>
  requires(may_not_fit<N> || may_not_fit<D>) QNumber(N, D)
  = delete;

  /// numerator/denominator in lowest terms, in small form whenever it fits. Either may be one of
  /// `gmp_tmp`. Throws: DivisionByZero when the denominator is 0.
  static QNumber from_mpz(mpz_srcptr numerator, mpz_srcptr denominator);

  /// As `from_mpz`, but in big form whatever the value.
  static QNumber big_from_mpz(mpz_srcptr numerator, mpz_srcptr denominator);

  /// A fraction. Requires: coprime parts and a positive denominator.
  struct LowestTerms {
    /// Not owned: read when a number is made of them.
    mpz_srcptr numerator;
    mpz_srcptr denominator;
  };

  /// In big form whatever the value, and without a gcd.
  /// Throws: DivisionByZero when the denominator is 0.
  explicit QNumber(LowestTerms const& fraction);

  /// In small form whenever it fits, and without a gcd.
  /// Throws: DivisionByZero when the denominator is 0.
  static QNumber from_lowest_terms(LowestTerms const& fraction);

  /// For tables of this library with very many numbers.
  explicit QNumber(detail::FixedFraction const& fixed);
  explicit QNumber(detail::SharedDigits const& shared);

  /// In other's form; a copy in big form owns a block of its own.
  QNumber(QNumber const& other) : num(other.num), den(other.den) {
    if (den == 0) [[unlikely]]
      clone_block();
  }

  /// In other's form, which is left as the small 0.
  QNumber(QNumber&& other) noexcept
      : num(std::exchange(other.num, 0)), den(std::exchange(other.den, 1)) {}

  ~QNumber() {
    if (den == 0) [[unlikely]]
      release_block();
  }

  /// Takes other's value. In small form afterwards only if both were.
  QNumber& operator=(QNumber const& other) {
    if (is_small_with(other)) [[likely]] {
      num = other.num;
      den = other.den;
    } else {
      assign_big(other);
    }
    return *this;
  }

  /// As copying would, in the same form, but takes other's block where there is one to take, and
  /// leaves other as the small 0. A number moved to itself keeps its value.
  QNumber& operator=(QNumber&& other) noexcept {
    if (is_small_with(other)) [[likely]] {
      num = other.num;
      den = other.den;
      if (this != &other) other.become_zero();
    } else {
      take_big(other);
    }
    return *this;
  }

  /// Exchanges values and forms.
  template <int>
  friend void swap(QNumber& a, QNumber& b) noexcept {
    std::swap(a.num, b.num);
    std::swap(a.den, b.den);
  }

  /// The same value, in small form when it fits.
  [[nodiscard]] QNumber to_small() const { return from_lowest_terms({numerator(), denominator()}); }

  /// Whether the number is in big form.
  bool is_big() const { return den == 0; }

  /// Whether the value is 0.
  bool is_zero() const { return sign() == 0; }

  /// Whether the value is an integer.
  bool is_integer() const { return den == 1 || (den == 0 && has_big_unit_denominator()); }

  /// -1, 0 or 1.
  int sign() const {
    if (den == 0) [[unlikely]]
      return mpz_sgn(block()->numerator);
    return (num > 0) - (num < 0);
  }

  /// Whether the parts are what a number's always are: coprime, with a positive denominator, and
  /// words within ±(2^63 - 1). Only a wrong `LowestTerms` can make it false. Costs a gcd.
  bool is_canonical() const;

  /// The two parts as GMP integers, in either form. Each view is good until the number changes, and
  /// a pointer taken from it no longer than the view (see there). As numbers, which stay good, they
  /// are `zelk::numerator(q)` and `zelk::denominator(q)` in zelk/numbers/functions.h.
  IntegerView numerator() const {
    if (den == 0) return IntegerView(block()->numerator);
    return IntegerView(num);
  }
  IntegerView denominator() const {
    if (den == 0) return IntegerView(block()->denominator);
    return IntegerView(den);
  }

  /// The two parts as machine words. Requires: small form.
  long small_numerator() const {
    assert(den != 0);
    return num;
  }
  long small_denominator() const {
    assert(den != 0);
    return den;
  }

  /// The same object may stand on both sides of each of these. Throws: DivisionByZero when b is
  /// 0 in a division, which then leaves the number as it was.
  QNumber& operator+=(QNumber const& b) { return become_sum<Sign::plus>(*this, b); }
  QNumber& operator-=(QNumber const& b) { return become_sum<Sign::minus>(*this, b); }
  QNumber& operator*=(QNumber const& b) { return become_product(*this, b); }
  QNumber& operator/=(QNumber const& b) { return become_quotient(*this, b); }

  /// In the form that a copy of a would have after the compound operator.
  friend QNumber operator+(QNumber const& a, QNumber const& b) {
    QNumber result;
    result.become_sum<Sign::plus>(a, b);
    return result;
  }
  friend QNumber operator-(QNumber const& a, QNumber const& b) {
    QNumber result;
    result.become_sum<Sign::minus>(a, b);
    return result;
  }
  friend QNumber operator*(QNumber const& a, QNumber const& b) {
    QNumber result;
    result.become_product(a, b);
    return result;
  }
  friend QNumber operator/(QNumber const& a, QNumber const& b) {
    QNumber result;
    result.become_quotient(a, b);
    return result;
  }

  /// Changes the sign, in place and in the same form.
  void negate() {
    if (den == 0) [[unlikely]]
      mpz_neg(block()->numerator, block()->numerator);
    else
      num = -num;
  }

  /// The number with the other sign, in the same form.
  template <int = 0>
  QNumber operator-() const {
    QNumber opposite(*this);
    opposite.negate();
    return opposite;
  }

  /// 1/value, in this number's form. Throws: DivisionByZero when the value is 0.
  [[nodiscard]] QNumber inv() const {
    if (den == 0) [[unlikely]]
      return inv_big();
    return {den, num};
  }

  /// |q|, in q's form.
  friend QNumber abs(QNumber const& q) {
    if (q.den == 0) [[unlikely]]
      return q.abs_big();
    return {magnitude(q.num), q.den};
  }

  /// Returns an integer and leaves the fraction, so that the old value is their sum: in small form
  /// the integer is rounded toward zero and the fraction has the sign of the value (-7/2 splits
  /// into -3 and -1/2), in big form it is the floor and the fraction lies in [0, 1) (-4 and 1/2).
  QNumber self_decompose() {
    if (den == 0) [[unlikely]]
      return split_big();
    long const whole = num / den;
    *this = QNumber(num % den, den);
    return {whole};
  }

  /// By value, whatever the forms.
  friend bool operator==(QNumber const& a, QNumber const& b) {
    if (!a.is_small_with(b)) [[unlikely]]
      return equal_big(a, b);
    return a.num == b.num && a.den == b.den;
  }

  /// By value, whatever the forms. Cost: for big forms a look at the leading bits nearly always,
  /// two products when those do not tell (docs/mathematics.md, section 10).
  friend bool operator<(QNumber const& a, QNumber const& b) {
    if (!a.is_small_with(b)) [[unlikely]]
      return less_big(a, b);
    if (a.den == 1 && b.den == 1) return a.num < b.num;
    if (a.num < 0 ? b.num >= 0 : b.num <= 0) return a.num < 0;
    // Cross products of two words fit in 128 bits, so the verdict needs no cancelling. The gcds
    // are taken all the same: comparing numbers is one of the things that fill the table.
    detail::enter_gcds({magnitude(a.num), magnitude(b.num)}, {b.den, a.den});
    return static_cast<DoubleWord>(a.num) * b.den < static_cast<DoubleWord>(b.num) * a.den;
  }

 private:
  enum class Sign { plus, minus };
  __extension__ using DoubleWord = __int128;

  struct Block {
    Block() {
      mpz_init(numerator);
      mpz_init(denominator);
    }
    Block(long n, long d) {
      mpz_init_set_si(numerator, n);
      mpz_init_set_si(denominator, d);
    }
    Block(mpz_srcptr n, mpz_srcptr d) {
      mpz_init_set(numerator, n);
      mpz_init_set(denominator, d);
    }
    /// Requires: as many bytes of digits behind the block.
    explicit Block(detail::FixedFraction const& fixed);
    explicit Block(detail::SharedDigits const& shared);
    Block(Block const&) = delete;
    Block& operator=(Block const&) = delete;
    ~Block() {
      mpz_clear(numerator);
      mpz_clear(denominator);
    }

    static void* operator new(std::size_t size) { return ::operator new(size); }
    static void* operator new(std::size_t size, std::size_t digits) {
      return ::operator new(size + digits);
    }
    static void operator delete(void* block) { ::operator delete(block); }

    mpz_t numerator;
    mpz_t denominator;
  };

  Block* block() const { return std::bit_cast<Block*>(num); }
  void adopt(Block* owned) {
    num = std::bit_cast<long>(owned);
    den = 0;
  }

  void become_zero() {
    num = 0;
    den = 1;
  }

  bool is_small_with(QNumber const& other) const { return den != 0 && other.den != 0; }

  static long magnitude(long word) { return word < 0 ? -word : word; }

  // Each forms its result only within ±(2^63 - 1) and says whether it could.
  static bool product(long x, long y, long& result) {
    return !__builtin_mul_overflow(x, y, &result) && result != LONG_MIN;
  }
  template <Sign sign>
  static bool sum(long x, long y, long& result) {
    bool const overflow = sign == Sign::plus ? __builtin_add_overflow(x, y, &result)
                                             : __builtin_sub_overflow(x, y, &result);
    return !overflow && result != LONG_MIN;
  }

  void reduce_words() {
    long const g = detail::cached_gcd(magnitude(num), magnitude(den));
    if (g != 1) {
      num /= g;
      den /= g;
    }
    if (den < 0) {
      num = -num;
      den = -den;
    }
  }

  // The arithmetic of both kinds of operators: *this becomes the result. `a` is *this for a
  // compound operator; for a free one *this is a new 0/1. `b` may be the same object too.
  template <Sign sign>
  QNumber& become_sum(QNumber const& a, QNumber const& b) {
    if (a.is_small_with(b)) [[likely]]
      sum_words<sign>(a, b);
    else
      sum_big(a, b, sign);
    return *this;
  }
  QNumber& become_product(QNumber const& a, QNumber const& b) {
    if (a.is_small_with(b)) [[likely]]
      product_words(a.num, a.den, b.num, b.den);
    else
      product_big(a, b);
    return *this;
  }
  QNumber& become_quotient(QNumber const& a, QNumber const& b) {
    // The product with 1/b, whose parts are coprime, but whose gcd is taken all the same.
    if (a.is_small_with(b) && b.num != 0) [[likely]] {
      long const below = magnitude(b.num);
      product_words(a.num, a.den, b.num < 0 ? -b.den : b.den, below,
                    detail::WordPair{b.den, below});
    } else {
      quotient_big(a, b);
    }
    return *this;
  }

  template <Sign sign>
  void sum_words(QNumber const& a, QNumber const& b) {
    long s, d;
    long g = 1;
    if (a.den == 1 && b.den == 1) {
      if (sum<sign>(a.num, b.num, s)) {
        num = s;
        return;  // den is 1 already, also in a new object
      }
    } else {
      // Over the least common denominator only a factor of g can still cancel.
      g = detail::cached_gcd(a.den, b.den);
      long const scale_b = a.den / g;
      long const scale_a = b.den / g;
      long x, y;
      if (product(b.num, scale_b, x) && product(a.num, scale_a, y) && sum<sign>(y, x, s)) {
        long const g2 = detail::cached_gcd(magnitude(s), g);
        if (product(scale_b, b.den / g2, d)) {
          num = s / g2;
          den = d;
          return;
        }
      }
    }
    sum_wide(a, sign == Sign::plus ? b.num : -b.num, b.den, g);
  }

  /// an/ad * bn/bd, after the gcds of the pairs `before`.
  template <class... Before>
  void product_words(long an, long ad, long bn, long bd, Before const&... before) {
    long n, d;
    long g1 = 1;
    long g2 = 1;
    if (ad == 1 && bd == 1) {
      (detail::cached_gcd(before.a, before.b), ...);
      if (product(an, bn, n)) {
        num = n;
        return;  // den is 1 already, also in a new object
      }
    } else {
      // Cancelled crosswise first, the product is in lowest terms.
      auto const gcds = detail::cached_gcds(before..., detail::WordPair{magnitude(an), bd},
                                            detail::WordPair{magnitude(bn), ad});
      g1 = gcds[sizeof...(before)];
      g2 = gcds[sizeof...(before) + 1];
      if (product(an / g1, bn / g2, n) && product(ad / g2, bd / g1, d)) {
        num = n;
        den = d;
        return;
      }
    }
    product_wide(an / g1, bn / g2, ad / g2, bd / g1);
  }

  [[gnu::noinline, gnu::cold]] void become_extreme();
  [[gnu::noinline, gnu::cold]] void become_unsigned(unsigned long n, unsigned long d,
                                                    bool is_negative);
  [[gnu::noinline]] void make_big();
  [[gnu::noinline]] void clone_block();
  [[gnu::noinline]] void release_block();
  [[gnu::noinline]] void normalise_big();
  [[gnu::noinline]] void assign_big(QNumber const& other);
  [[gnu::noinline]] void take_big(QNumber& other) noexcept;
  [[gnu::noinline]] bool has_big_unit_denominator() const;
  [[gnu::noinline]] Block& room_for_result(QNumber const& a);
  [[gnu::noinline]] void sum_wide(QNumber const& a, long bn, long bd, long g);
  [[gnu::noinline]] void product_wide(long n1, long n2, long d1, long d2);
  [[gnu::noinline]] void become_wide(DoubleWord n, DoubleWord d);
  [[gnu::noinline]] void sum_big(QNumber const& a, QNumber const& b, Sign sign);
  [[gnu::noinline]] void product_big(QNumber const& a, QNumber const& b);
  [[gnu::noinline]] void quotient_big(QNumber const& a, QNumber const& b);
  [[gnu::noinline]] QNumber inv_big() const;
  [[gnu::noinline]] QNumber abs_big() const;
  [[gnu::noinline]] QNumber split_big();
  [[gnu::noinline]] static bool equal_big(QNumber const& a, QNumber const& b);
  [[gnu::noinline]] static bool less_big(QNumber const& a, QNumber const& b);

  // Small form: numerator and denominator, both within ±(2^63 - 1), the denominator at least 1.
  // Big form: the address of the owned block, and 0.
  long num;
  long den;
};

static_assert(sizeof(QNumber) == 16);

/// The same functions again, as names in the namespace: `zelk::abs(q)` finds them too.
QNumber operator+(QNumber const& a, QNumber const& b);
QNumber operator-(QNumber const& a, QNumber const& b);
QNumber operator*(QNumber const& a, QNumber const& b);
QNumber operator/(QNumber const& a, QNumber const& b);
QNumber abs(QNumber const& q);
bool operator==(QNumber const& a, QNumber const& b);
bool operator<(QNumber const& a, QNumber const& b);

/// The other relations are made of `<`, and fill the table of gcds as it does. Templates, so that
/// a host's own functions of these names come before them, as before `swap`.
template <int = 0>
bool operator>(QNumber const& a, QNumber const& b) {
  return b < a;
}
template <int = 0>
bool operator<=(QNumber const& a, QNumber const& b) {
  return !(b < a);
}
template <int = 0>
bool operator>=(QNumber const& a, QNumber const& b) {
  return !(a < b);
}

}  // namespace zelk
