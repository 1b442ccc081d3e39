#include "zelk/convert/text.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "tests/convert/refusal.h"
#include "tests/support/text_form.h"

namespace zelk::convert {
namespace {

using namespace std::string_literals;

TEST(Text, ReadsFractionsAndDecimalsExactly) {
  std::istringstream table(R"(
      415/93 415/93   -7/2 -7/2   12 12     3.25 13/4   -1.5e-3 -3/2000   -0.0e-9 0   007 7
      1/007 1/7       6/4 3/2     1E+3 1000 25E-1 5/2   1e0000000000000000000000000000000001 10
      -9223372036854775808 -9223372036854775808   1/9223372036854775808 1/9223372036854775808
      -9223372036854775808/9223372036854775808 -1   9223372036854775807.5 18446744073709551615/2
      -999999999999999999/17 -999999999999999999/17   1e17 100000000000000000   1e18 1000000000000000000
      12345678901234567.8 61728394506172839/5   -1e-17 -1/100000000000000000   1e-18 1/1000000000000000000
      17/999999999999999999 17/999999999999999999   00000000000000000000000012/5 12/5   10e18 10000000000000000000
  )");
  for (std::string text, canonical; table >> text >> canonical;)
    EXPECT_EQ(to_string(parse_rational(text)), canonical) << text;
}

std::string refusal(std::string_view text) {
  return test::refusal([&] { parse_rational(text); });
}

TEST(Text, RefusesEverythingElseAtItsColumn) {
  // A caret stands before the first offending byte.
  std::pair<std::string, std::string> const table[] = {
      {"expected a digit", "^,-^,^+5,^.5,5.^,1/^-2,^ 1,1e-^,^\0,1e-^+5,1e+^-5"s},
      {"zero denominator", "-1/^000"},
      {"unexpected character", "1^ /2,1.2^.3,1.5^/2,1/2^e3,1^\0"s},
      {"the exponent is beyond 1000000", "1e^1000001,0e^1000001,1.5e-^18446744073709551621"},
  };
  for (auto const& [reason, texts] : table) {
    std::istringstream stream(texts);
    for (std::string text; std::getline(stream, text, ',');) {
      auto const place = text.find('^');
      text.erase(place, 1);
      auto const tail = ": column " + std::to_string(place + 1) + ": " + reason;
      EXPECT_TRUE(refusal(text).ends_with(tail)) << text << " gives " << refusal(text);
      ParseError const error(text, place + 1, reason);
      EXPECT_TRUE(error.column() == place + 1 && error.reason() == reason);
    }
  }
}

TEST(Text, NamesTheInputInTheMessage) {
  EXPECT_EQ(refusal("1/-2"), R"("1/-2": column 3: expected a digit)");
  EXPECT_EQ(refusal("1\n\0\xff ~\x7f"s),
            R"("1\x0a\x00\xff ~\x7f": column 2: unexpected character)");
  std::string const many(40, '7');
  std::string const few(32, '7');
  EXPECT_EQ(refusal(many + "x" + many),
            "\"..." + few + "x" + few.substr(1) + "...\": column 41: unexpected character");
  EXPECT_EQ(refusal("x" + many + many),
            "\"x" + few + few.substr(1) + "...\": column 1: expected a digit");
  EXPECT_EQ(refusal(many + many + "/"),
            "\"..." + few.substr(1) + "/\": column 82: expected a digit");
  EXPECT_EQ(refusal(few + few.substr(1) + "/"),
            '"' + few + few.substr(1) + "/\": column 65: expected a digit");
}

TEST(Text, ReadsExponentsUpToTheLimitAndFractionsOfAnyLength) {
  auto const zeros = [](std::size_t n) { return std::string(n, '0'); };
  EXPECT_TRUE(to_string(parse_rational("1e1000000")) == "1" + zeros(1'000'000));
  EXPECT_TRUE(to_string(parse_rational("-1e-1000000")) == "-1/1" + zeros(1'000'000));
  EXPECT_TRUE(to_string(parse_rational("0." + zeros(69'999) + "1")) == "1/1" + zeros(70'000));
}

TEST(Text, AgreesWithGmpAtEverySize) {
  auto next = test::random_bytes(20);
  for (unsigned size = 0; size < 3000; size += 1 + size / 16) {
    for (int i = 0; i < 10; ++i) {
      // Either side of a power of two.
      mpq_class fraction((mpz_class(1) << size) + test::corner_integer(next),
                         1 + (mpz_class(next()) << next() % (size + 1)));
      if (i % 2 == 0) fraction = -fraction;
      mpq_class exact = fraction;
      exact.canonicalize();
      QNumber const q = parse_rational(fraction.get_str());
      ASSERT_EQ(to_string(q), exact.get_str());
      ASSERT_EQ(test::show(q), test::show(test::to_number(exact)));
      ASSERT_EQ(to_string(test::to_number(exact, true)), exact.get_str());
    }
  }
}

}  // namespace
}  // namespace zelk::convert
