#include "zelk/numbers/q_number.h"

#include <gtest/gtest.h>

#include <climits>
#include <sstream>
#include <string>
#include <type_traits>

#include "tests/support/text_form.h"

namespace zelk {
namespace {

using test::number;
using test::show;

// Made before main, by way of the scratch integers.
QNumber const early = QNumber(LONG_MIN, 6) + QNumber(1, 3);

static_assert(!std::is_constructible_v<QNumber, double>);
static_assert(!std::is_constructible_v<QNumber, unsigned long>);
static_assert(!std::is_constructible_v<QNumber, __int128_t>);
static_assert(std::is_constructible_v<QNumber, unsigned>);

// A number in big form ends in B.
TEST(QNumber, IsMadeInItsForm) {
  struct {
    QNumber result;
    char const* shown;
  } const table[] = {
      {early, "-1537228672809129301B"},
      {QNumber(6, -4), "-3/2"},
      {QNumber(0, -7), "0"},
      {QNumber(-LONG_MAX), "-9223372036854775807"},
      {QNumber(LONG_MIN), "-9223372036854775808B"},
      {QNumber(LONG_MIN, 2), "-4611686018427387904B"},
      {QNumber(5, LONG_MIN), "-5/9223372036854775808B"},
      {QNumber(0, LONG_MIN), "0B"},
      {QNumber(LONG_MIN, LONG_MIN), "1B"},
      {QNumber(-2, 3).inv(), "-3/2"},
      {number("1/9223372036854775808").inv(), "9223372036854775808B"},
      {abs(QNumber(-5, 3)), "5/3"},
      {abs(QNumber(LONG_MIN)), "9223372036854775808B"},
  };
  for (auto const& [result, shown] : table) EXPECT_EQ(show(result), shown);
}

TEST(QNumber, ComputesValueAndForm) {
  // 2^63 - 1 = 14197294936951 * 649657; its square root lies between 3037000499 and 3037000500.
  std::istringstream equations(R"(
      1/2 + 1/2 is 1      1/6 + 1/3 is 1/2      1/2 - 1/2 is 0      1 + 1/2B is 3/2B
      9223372036854775807 + 1 is 9223372036854775808B
      9223372036854775807 - -1 is 9223372036854775808B
      -9223372036854775807 + -1 is -9223372036854775808B
      -9223372036854775807 - 1 is -9223372036854775808B
      -1 - 9223372036854775807 is -9223372036854775808B
      0 - 9223372036854775807 is -9223372036854775807
      9223372036854775807/2 + -9223372036854775805/2 is 1
      9223372036854775807/2 + 1/2 is 4611686018427387904B
      9223372036854775807/2 - 1/3 is 27670116110564327419/6B
      1/2 - 9223372036854775807/3 is -18446744073709551611/6B
      1/14197294936951 + 1/649657 is 14197295586608/9223372036854775807
      1/3037000500 - 1/3037000501 is 1/9223372040037250500B
      14197294936951 * -649657 is -9223372036854775807
      3037000499 * 3037000499 is 9223372030926249001
      3037000500 * 3037000500 is 9223372037000250000B
      -4294967296 * 2147483648 is -9223372036854775808B
      1/4294967296 * 1/2147483648 is 1/9223372036854775808B
      9223372036854775807/2 * 2/9223372036854775807 is 1
      1/2 / -3/4 is -2/3      1 / -2B is -1/2B      2/3 / 2/3 is 1      -2/3B / -2/3B is 1B
      3/4B * 0 is 0           3B * 0 is 0B          3/4B * 0B is 0B     0 * 3/4B is 0B
      7/2B + 7/2B is 7B       7/2B - 7/2B is 0B     -2/3B * -2/3B is 4/9B
      3/4B = 1/2 is 1/2B      1/2 = 3/4B is 3/4B    3/4B = 3/4B is 3/4B    3/4 = 3/4 is 3/4
  )");
  for (std::string a, op, b, is, result; equations >> a >> op >> b >> is >> result;) {
    QNumber x = number(a);
    QNumber const other = number(b);
    // Where the operands read the same, they are the same object.
    QNumber const& y = a == b ? x : other;
    op == "+" ? x += y : op == "-" ? x -= y : op == "*" ? x *= y : op == "/" ? x /= y : x = y;
    EXPECT_EQ(show(x), result) << a << op << b;
    EXPECT_EQ(show(other), b);
  }
}

}  // namespace
}  // namespace zelk
