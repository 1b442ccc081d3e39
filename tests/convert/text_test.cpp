#include "zelk/convert/text.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <string_view>

namespace zelk::convert {
namespace {

using namespace std::string_view_literals;

TEST(Text, ReadsFractionsAndDecimalsExactly) {
  std::istringstream table(R"(
      415/93 415/93   -7/2 -7/2   12 12     3.25 13/4   -1.5e-3 -3/2000   -0.0e-9 0   007 7
      1/007 1/7       6/4 3/2     1E+3 1000 25E-1 5/2   1e0000000000000000000000000000000001 10
      -9223372036854775808 -9223372036854775808   1/9223372036854775808 1/9223372036854775808
      -9223372036854775808/9223372036854775808 -1   9223372036854775807.5 18446744073709551615/2
  )");
  for (std::string text, canonical; table >> text >> canonical;)
    EXPECT_EQ(to_string(parse_rational(text)), canonical) << text;
}

TEST(Text, RefusesEverythingElseAtItsColumn) {
  constexpr char digit[] = "expected a digit";
  constexpr char zero[] = "zero denominator";
  constexpr char junk[] = "unexpected character";
  constexpr char exponent[] = "the exponent is beyond 1000000";
  struct {
    std::string_view text;
    std::size_t column;
    char const* reason;
  } const table[] = {
      {"", 1, digit},
      {"-", 2, digit},
      {"+5", 1, digit},
      {".5", 1, digit},
      {"5.", 3, digit},
      {"1/-2", 3, digit},
      {" 1", 1, digit},
      {"1e-", 4, digit},
      {"\0"sv, 1, digit},
      {"-1/000", 4, zero},
      {"1 /2", 2, junk},
      {"1.2.3", 4, junk},
      {"1.5/2", 4, junk},
      {"1/2e3", 4, junk},
      {"1\0"sv, 2, junk},
      {"1e1000001", 3, exponent},
      {"0e1000001", 3, exponent},
      {"1.5e-99999999999999999999999999999999999999", 6, exponent},
  };
  for (auto const& [text, column, reason] : table) {
    try {
      ADD_FAILURE() << text << " was read as " << to_string(parse_rational(text));
    } catch (ParseError const& error) {
      EXPECT_EQ(error.column(), column) << text;
      std::string const message = error.what();
      auto const tail = ": column " + std::to_string(column) + ": " + reason;
      EXPECT_TRUE(message.ends_with(tail)) << message;
    }
  }
}

std::string refusal(std::string_view text) {
  try {
    parse_rational(text);
  } catch (ParseError const& error) {
    return error.what();
  }
  return "";
}

TEST(Text, NamesTheInputInTheMessage) {
  EXPECT_EQ(refusal("1/-2"), R"("1/-2": column 3: expected a digit)");
  EXPECT_EQ(refusal("1\n\0\xff"sv), R"("1\x0a\x00\xff": column 2: unexpected character)");
  std::string const many(40, '7');
  std::string const few(32, '7');
  EXPECT_EQ(refusal(many + "x" + many),
            "\"..." + few + "x" + few.substr(1) + "...\": column 41: unexpected character");
  EXPECT_EQ(refusal("x" + many + many),
            "\"x" + few + few.substr(1) + "...\": column 1: expected a digit");
  EXPECT_EQ(refusal(many + many + "/"),
            "\"..." + few.substr(1) + "/\": column 82: expected a digit");
}

TEST(Text, ReachesTheExponentLimitOnBothSides) {
  std::string const power = "1" + std::string(1'000'000, '0');
  EXPECT_TRUE(to_string(parse_rational("1e1000000")) == power);
  EXPECT_TRUE(to_string(parse_rational("-1e-1000000")) == "-1/" + power);
}

TEST(Text, AgreesWithGmpAtEverySize) {
  std::mt19937_64 random(20);
  gmp_randclass bits(gmp_randinit_default);
  auto const integer = [&](unsigned long size) -> mpz_class {
    if (random() % 2 == 0) return bits.get_z_bits(size);
    // Either side of a power of two, often of the one where words end.
    mpz_class const power = mpz_class(1) << (random() % 4 == 0 ? 63 : size);
    return power + static_cast<long>(random() % 3) - 1;
  };
  for (unsigned long size = 1; size < 3000; size += 1 + size / 16) {
    for (int i = 0; i < 20; ++i) {
      mpz_class const divisor = integer(1 + random() % size) + 1;
      mpz_class const common = integer(1 + random() % 80) + 1;
      mpq_class fraction(integer(size), divisor);
      if (random() % 2 == 0) fraction = -fraction;
      fraction.canonicalize();
      QNumber const q = parse_rational(fraction.get_str());
      ASSERT_EQ(to_string(q), fraction.get_str());
      ASSERT_EQ(mpz_cmp(q.denominator(), fraction.get_den_mpz_t()), 0);
      mpz_class const numerator = fraction.get_num() * common;
      mpz_class const denominator = fraction.get_den() * common;
      ASSERT_EQ(to_string(parse_rational(numerator.get_str() + "/" + denominator.get_str())),
                fraction.get_str());
    }
  }
}

}  // namespace
}  // namespace zelk::convert
