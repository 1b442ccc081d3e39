#include <gmpxx.h>
#include <gtest/gtest.h>
#include <mpfr.h>
#include <pthread.h>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <iomanip>
#include <iterator>
#include <limits>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/text_form.h"
#include "zelk/convert/decimal.h"
#include "zelk/convert/gmp.h"
#include "zelk/convert/machine.h"
#include "zelk/convert/stream.h"
#include "zelk/convert/text.h"

namespace zelk::convert {
namespace {

using namespace std::string_literals;
using test::show;

/// What `act` says when it refuses; empty when it does not.
template <class Act>
std::string refusal(Act act) {
  try {
    return act(), "";
  } catch (std::invalid_argument const& error) {
    return error.what();
  }
}
std::string refusal(std::string const& text) {
  return refusal([&] { parse_rational(text); });
}

TEST(Text, ReadsFractionsAndDecimalsExactly) {
  std::istringstream table(R"(
      3.25 13/4   -1.5e-3 -3/2000   -0.0e-9 0   007 7   1/007 1/7   6/4 3/2   1E+3 1000   25E-1 5/2
      1e0000000000000000000000000000000001 10   -9223372036854775808/9223372036854775808 -1
      9223372036854775807.5 18446744073709551615/2   -999999999999999999/17 -999999999999999999/17
      1e17 100000000000000000   1e18 1000000000000000000   12345678901234567.8 61728394506172839/5
      -1e-17 -1/100000000000000000   1e-18 1/1000000000000000000   10e18 10000000000000000000
      17/999999999999999999 17/999999999999999999   00000000000000000000000012/5 12/5
  )");
  for (std::string text, canonical; table >> text >> canonical;)
    EXPECT_EQ(to_string(parse_rational(text)), canonical) << text;
  auto const zeros = [](std::size_t n) { return std::string(n, '0'); };
  EXPECT_TRUE(to_string(parse_rational("1e1000000")) == "1" + zeros(1'000'000));
  EXPECT_TRUE(to_string(parse_rational("-1e-1000000")) == "-1/1" + zeros(1'000'000));
  EXPECT_TRUE(to_string(parse_rational("0." + zeros(69'999) + "1")) == "1/1" + zeros(70'000));
}

TEST(Text, RefusesEverythingElseAtItsColumn) {
  // A caret stands before the first offending byte.
  std::pair<std::string, std::string> const table[] = {
      {"expected a digit", "^,-^,^+5,^.5,5.^,1/^-2,^ 1,1e-^,^\0,1e-^+5,1e+^-5"s},
      {"zero denominator", "-1/^000,1/^0e5"},
      {"unexpected character", "1^ /2,1.2^.3,1.5^/2,1/2^e3,1^\0"s},
      {"the exponent is beyond 1000000", "1e^1000001,0e^1000001,1.5e-^18446744073709551621"},
  };
  for (auto const& [reason, texts] : table) {
    std::istringstream stream(texts);
    for (std::string text; std::getline(stream, text, ',');) {
      auto const place = text.find('^');
      text.erase(place, 1);
      ParseError const error(text, place + 1, reason);
      EXPECT_EQ(refusal(text), error.what());
      EXPECT_TRUE(error.column() == place + 1 && error.reason() == reason);
    }
  }
  EXPECT_EQ(refusal("1\n\0\xff ~\x7f"s),
            R"("1\x0a\x00\xff ~\x7f": column 2: unexpected character)");
  std::string const many(40, '7'), few(32, '7'), less(31, '7'), missing = ": expected a digit";
  EXPECT_EQ(refusal(many + "x" + many),
            "\"..." + few + "x" + less + "...\": column 41: unexpected character");
  EXPECT_EQ(refusal("x" + many + many), "\"x" + few + less + "...\": column 1" + missing);
  EXPECT_EQ(refusal(many + many + "/"), "\"..." + less + "/\": column 82" + missing);
  EXPECT_EQ(refusal(few + less + "/"), '"' + few + less + "/\": column 65" + missing);
}

/// Groups digits and writes the decimal point as a comma.
class Grouping : public std::numpunct<char> {
  char do_thousands_sep() const override { return '.'; }
  char do_decimal_point() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};
std::locale grouping() { return {std::locale::classic(), new Grouping}; }

TEST(Stream, WritesPaddedTextWhateverTheLocale) {
  std::istringstream table(
      "-22/7 r ***-22/7   -22/7 l -22/7***   -22/7 i -***22/7   22/7 i ****22/7   0 i *******0   "
      "1234567/2 r 1234567/2   -12345678 i -12345678");
  std::string number, padded;
  for (char side = 0; table >> number >> side >> padded;) {
    std::ostringstream out;
    out.imbue(grouping());
    (side == 'l' ? std::left : side == 'r' ? std::right : std::internal)(out);
    out << std::hex << std::showpos << std::setfill('*') << std::setw(8) << parse_rational(number);
    EXPECT_EQ(out.width(), 0) << number;
    EXPECT_EQ(out.str(), padded);
  }
}

TEST(Stream, ReadsAsFarAsANumberGoes) {
  // What is read, a caret, what is left, and after an equals sign the number, if there is one.
  std::istringstream table(
      "415/93^=415/93; \t\n-7/2^ 8=-7/2;1/2^,3/4=1/2;1/2^-3=1/2;1/2^/3=1/2;1/2^e5=1/2;1.5^/2=3/2;"
      "1.5E+3^e=1500;1e-3^.5=1/1000;1e5^e=100000;1e5^/2=100000;1E5^/2=100000;12^x=12;"
      "1.234^.567=617/500;1^,5=1;9223372036854775808^)=9223372036854775808;^=;  ^=;^+5=;^.5=;^/5=;"
      "^e5=;-^-5=;-^e5=;1/^-2=;1/^=;1/^e5=;1.^e5=;1.5e^ach=;1e-^+5=;1/0^ =;1e1000001^)=");
  for (std::string row; std::getline(table, row, ';');) {
    auto const caret = row.find('^'), equals = row.find('=');
    auto const rest = row.substr(caret + 1, equals - caret - 1), number = row.substr(equals + 1);
    std::istringstream in(row.substr(0, caret) + rest);
    in.imbue(grouping());
    QNumber q(-3, 5);
    in >> std::setw(1) >> q;
    EXPECT_TRUE(in.fail() == number.empty() && !in.bad() && in.width() == 1) << row;
    EXPECT_EQ(in.eof(), rest.empty()) << row;
    EXPECT_EQ(to_string(q), number.empty() ? "-3/5" : number) << row;
    in.clear();
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), rest) << row;
  }
  QNumber q;
  EXPECT_FALSE(std::istringstream(" 5") >> std::noskipws >> q);
}

/// Yields a digit and then breaks, or ends the thread that reads it.
struct Breaking : std::streambuf {
  explicit Breaking(bool ends) : ends_thread(ends) { setg(&digit, &digit, &digit + 1); }
  int_type underflow() override {
    if (ends_thread) pthread_exit(nullptr);
    throw std::runtime_error("broken");
  }
  bool ends_thread;
  char digit = '1';
};

TEST(Stream, ReportsABrokenBufferAsTheStreamIsTold) {
  QNumber q(-3, 5);
  for (bool const is_told : {false, true}) {
    Breaking buffer(false);
    std::istream in(&buffer);
    if (is_told) in.exceptions(std::ios_base::badbit);
    bool thrown = false;
    try {
      in >> q;
    } catch (std::runtime_error const&) {
      thrown = true;
    }
    EXPECT_TRUE(thrown == is_told && in.bad());
  }
  std::istringstream in("1/0");
  in.exceptions(std::ios_base::failbit);
  EXPECT_THROW(in >> q, std::ios_base::failure);
  // The whole process would end if the end of the thread were taken for an error.
  std::thread([&] {
    Breaking last(true);
    std::istream(&last) >> q;
  }).join();
  EXPECT_EQ(q, QNumber(-3, 5));
}

/// n * 10^-places.
std::string decimal(mpz_class const& n, unsigned places) {
  std::string text = mpz_class(abs(n)).get_str();
  if (text.size() <= places) text.insert(0, places + 1 - text.size(), '0');
  if (places > 0) text.insert(text.size() - places, 1, '.');
  return (n < 0 ? "-" : "") + text;
}

void expect_decimals(mpq_class const& exact, bool big, unsigned places) {
  mpz_class scaled, floor, rest;
  mpz_ui_pow_ui(scaled.get_mpz_t(), 10, places);
  scaled *= exact.get_num();
  mpz_fdiv_qr(floor.get_mpz_t(), rest.get_mpz_t(), scaled.get_mpz_t(), exact.get_den_mpz_t());
  mpz_class const ceiling = floor + (rest != 0), twice = 2 * rest + (floor & 1);  // odd: up
  QNumber const q = test::to_number(exact, big);
  EXPECT_EQ(to_decimal(q, places, Rounding::down), decimal(floor, places)) << exact;
  EXPECT_EQ(to_decimal(q, places, Rounding::up), decimal(ceiling, places)) << exact;
  EXPECT_EQ(to_decimal(q, places, Rounding::nearest),
            decimal(twice > exact.get_den() ? ceiling : floor, places));
  EXPECT_EQ(is_decimal(q, places), rest == 0) << exact;
}

TEST(Decimal, RoundsDownUpAndToTheNearestOrEven) {
  for (QNumber const& q :
       test::numbers("0 12 2/3 -1/300 -1/3 1/2 3/2 5/2 -3/2 3/8 -1/8 999/1000 -1999/20 1/1024 "
                     "1/5 1/10 3/16 1/3125 1/400 1/62500 -7/1000 1/35 9223372036854775807/1000"))
    for (unsigned places = 0; places < 12; ++places)
      for (bool const big : {false, true}) expect_decimals(test::to_rational(q), big, places);
  auto next = test::random_bytes(5);
  for (int i = 0; i < 2000; ++i) expect_decimals(test::corner_rational(next), false, next() % 41);
  for (char const* number : {"-1/2", "1/3125", "1e-4000"})
    EXPECT_TRUE(is_decimal(parse_rational(number), 4'000'000'000U)) << number;
  for (char const* number : {"1/3", "-7/6", "1/35", "1/18446744073709551617"})
    EXPECT_FALSE(is_decimal(parse_rational(number), 4'000'000'000U)) << number;
  EXPECT_FALSE(is_decimal(parse_rational("1e-4000"), 3999));
}

TEST(Decimal, PrintsEnclosuresOutwardAndMarksExactEnds) {
  std::istringstream table(
      "1/2 2/3 3 [=0.500, 0.667]   1/3 2/3 3 [0.333, 0.667]   1/3 1/2 3 [0.333, =0.500]   "
      "1/4 1/4 3 [=0.250, =0.250]   -1/3 -2/3 2 [-0.67, -0.33]   -1/3 1/3 0 [-1, 1]   "
      "-1/900 -1/999 2 [-0.01, 0.00]   0 1e-30 1 [=0.0, 0.1]   1e9 -7 0 [=-7, =1000000000]");
  std::string first, second, low, high;
  for (unsigned places = 0; table >> first >> second >> places >> low >> high;)
    EXPECT_EQ(to_decimal({parse_rational(first), parse_rational(second)}, places),
              low + ' ' + high);
  EXPECT_EQ(to_scientific({{-1, 2}, {2, 3}}, 3), "[=-5.00e-1, 6.67e-1]");
  EXPECT_EQ(to_scientific({{1, 30}, 0}, 1), "[=0, 4e-2]");
}

TEST(Decimal, PutsPowersOfTenBehindSignificantDigits) {
  // A number, how many digits, and the text down, up and to the nearest.
  std::istringstream table(R"(
      0 9 0 0 0   1 1 1e0 1e0 1e0   1 3 1.00e0 1.00e0 1.00e0   1e-300 3 1.00e-300 1.00e-300 1.00e-300
      -1/3 1 -4e-1 -3e-1 -3e-1   -1/3 6 -3.33334e-1 -3.33333e-1 -3.33333e-1   2/3 3 6.66e-1 6.67e-1 6.67e-1
      9999/10000 1 9e-1 1e0 1e0   9999/10000 3 9.99e-1 1.00e0 1.00e0   9999/10000 4 9.999e-1 9.999e-1 9.999e-1
      -99951/100 3 -1.00e3 -9.99e2 -1.00e3   -99951/100 6 -9.99510e2 -9.99510e2 -9.99510e2
      -12345e40 1 -2e44 -1e44 -1e44   -12345e400 3 -1.24e404 -1.23e404 -1.23e404   25/2 2 1.2e1 1.3e1 1.2e1
      1000000007/999999937 1 1e0 2e0 1e0   1000000007/999999937 6 1.00000e0 1.00001e0 1.00000e0
      123456789012345678901234567890/7 3 1.76e28 1.77e28 1.76e28
  )");
  std::string q, down, up, near;
  for (unsigned digits = 0; table >> q >> digits >> down >> up >> near;) {
    EXPECT_EQ(to_scientific(parse_rational(q), digits, Rounding::down), down);
    EXPECT_EQ(to_scientific(parse_rational(q), digits, Rounding::up), up);
    EXPECT_EQ(to_scientific(parse_rational(q), digits, Rounding::nearest), near);
  }
  EXPECT_EQ(refusal([] { return to_scientific(0, 0, Rounding::down); }), "no significant digits");
}

template <class Function, class... T>
constexpr bool takes = (... || std::is_invocable_v<Function, T>);
using FromMpz = decltype([](auto const& x) -> decltype(from_mpz(x)) { return from_mpz(x); });
using FromDouble = decltype([](auto x) -> decltype(from_double(x)) { return from_double(x); });
static_assert(takes<FromMpz, mpz_class> && takes<FromMpz, mpz_srcptr> &&
              takes<FromMpz, IntegerView> && !takes<FromMpz, int, double, std::nullptr_t>);
static_assert(takes<FromDouble, double> && takes<FromDouble, float> &&
              !takes<FromDouble, long double, long, unsigned long>);

void expect_round_trip(mpq_class const& exact, mpz_class const& factor) {
  // A non-canonical fraction, and a target in use.
  mpq_class raw(exact.get_num() * factor, exact.get_den() * factor), target(7, 3);
  std::string const shown = show(test::to_number(exact));
  EXPECT_EQ(show(from_mpq(raw)), shown);
  mpq_class const positive(exact.get_num() * abs(factor), exact.get_den() * abs(factor));
  EXPECT_EQ(show(parse_rational(positive.get_str())), shown);
  EXPECT_EQ(show(from_mpz(exact.get_num())), show(test::to_number(exact.get_num())));
  for (bool const big : {false, true}) {
    QNumber const q = test::to_number(exact, big);
    to_mpq(target.get_mpq_t(), q);
    EXPECT_EQ(target.get_str(), exact.get_str());
    EXPECT_EQ(to_mpq_class(q).get_str(), exact.get_str());
    EXPECT_EQ(to_string(q), exact.get_str());
    EXPECT_EQ(to_mpz_class(test::to_number(exact.get_num(), big)), exact.get_num());
  }
}

TEST(Gmp, GivesBackWhatItTookAndRefusesTheRest) {
  for (char const* text : {"0", "-6", "5/3", "9223372036854775807", "-9223372036854775808",
                           "1/9223372036854775808", "-9223372036854775809/2"})
    for (int const factor : {1, -1, 12}) expect_round_trip(mpq_class(text), factor);
  auto next = test::random_bytes(11);
  for (unsigned i = 0; i < 2000; ++i) {  // also either side of any power of two
    mpq_class exact = test::corner_rational(next);
    if (i % 2 == 0) exact += mpz_class(1) << i;
    mpz_class const factor = test::corner_integer(next);
    expect_round_trip(exact, factor == 0 ? mpz_class(1) : factor);
  }
  for (int const n : {0, 1, -1})
    EXPECT_EQ(refusal([&] { from_mpq(mpq_class(n, mpz_class(0))); }), "zero denominator");
  mpz_class target = 5;
  for (QNumber const& q : {QNumber(1, 2), test::number("-7/3B")})
    EXPECT_EQ(refusal([&] { to_mpz(target.get_mpz_t(), q); }), "the number is not an integer");
  EXPECT_EQ(target, 5);
}

constexpr double infinity = std::numeric_limits<double>::infinity();

/// MPFR's own rounding. 2600 bits hold a dyadic test value exactly, and any other so closely that
/// no double and no point half-way between two lies between it and what is rounded.
double round_by_mpfr(mpq_class const& q, mpfr_rnd_t direction) {
  mpfr_t value;
  mpfr_init2(value, 2600);
  mpfr_set_q(value, q.get_mpq_t(), MPFR_RNDN);
  double const rounded = mpfr_get_d(value, direction);
  mpfr_clear(value);
  return rounded;
}

void expect_rounded(mpq_class const& exact) {
  auto const bits = [](double x) { return std::bit_cast<long>(x); };  // tell -0.0 from 0.0
  QNumber const q = test::to_number(exact);
  double const below = round_by_mpfr(exact, MPFR_RNDD), above = round_by_mpfr(exact, MPFR_RNDU);
  EXPECT_EQ(bits(to_double(q, Rounding::down)), bits(below)) << exact;
  EXPECT_EQ(bits(to_double(q, Rounding::up)), bits(above)) << exact;
  EXPECT_EQ(bits(to_double(q, Rounding::nearest)), bits(round_by_mpfr(exact, MPFR_RNDN))) << exact;
  EXPECT_EQ(enclosing_doubles(q), std::pair(below, above)) << exact;
}

mpq_class power_of_two(int exponent) {
  mpq_class const power(mpz_class(1) << static_cast<unsigned>(std::abs(exponent)));
  return exponent < 0 ? mpq_class(1 / power) : power;
}

TEST(Machine, TakesDoublesExactlyAndRoundsLikeMpfr) {
  std::vector<double> doubles = {0.0, 0.1, DBL_TRUE_MIN, 2 * DBL_TRUE_MIN, DBL_MAX};
  for (double const x : {DBL_MIN, DBL_MAX, 1.0, 2.0, 0x1p63, 0x1p64, 0x1p1023, 0x1p-64})
    doubles.insert(doubles.end(), {std::nextafter(x, 0.0), x, std::nextafter(x, infinity)});
  auto next = test::random_bytes(8);
  for (int i = 0; i < 500; ++i) {
    int const exponent = static_cast<int>(next() * 9) - 1200;
    doubles.push_back(std::ldexp(static_cast<double>(test::corner_word(next)), exponent));
    expect_rounded(test::corner_rational(next) * power_of_two(exponent));
  }
  mpq_class const half(1, 2), little = power_of_two(-200);
  for (double const magnitude : doubles) {
    if (std::isinf(magnitude)) continue;
    for (double const x : {magnitude, -magnitude}) {
      mpq_class const exact(x);
      EXPECT_EQ(show(from_double(x)), show(test::to_number(exact)));
      // On the way to the next one, where some rounding changes its mind.
      mpq_class const gap = power_of_two(std::max(std::ilogb(x == 0 ? DBL_MIN : x), -1022) - 52);
      for (mpq_class const& part : {mpq_class(0), little, mpq_class(half - little), half,
                                    mpq_class(half + little), mpq_class(1 - little)})
        expect_rounded(exact + part * gap);
    }
  }
  for (int const exponent : {1024, 1025, 100'000, -1075, -1076, -1077, -100'000})
    for (int const sign : {1, -1}) expect_rounded(sign * power_of_two(exponent));
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (double const x : {infinity, -infinity, nan, -nan, std::bit_cast<double>(0x7ff0000000000001)})
    EXPECT_EQ(refusal([&] { from_double(x); }), std::isinf(x)
                                                    ? "an infinity is not a rational number"
                                                    : "a NaN is not a rational number");
}

}  // namespace
}  // namespace zelk::convert
