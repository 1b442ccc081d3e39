#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/certify/judge.h"
#include "zelk/certify/write.h"
#include "zelk/convert/text.h"

namespace zelk::verify {

namespace {

using certify::to_json_lines;
using test::judge_by_both;

/// Claims of one function over [a, b], or of a power of it, at the limits of its theorem.
TEST(Checkers, AcceptUpToTheLimitsOfTheorems) {
  struct {
    char const* theorem;
    char const* numbers;  // a, b, l, u, and the second operand if there is one
    bool follows;
  } const table[] = {
      {"exp_taylor", "-1000000 -1000 0 1/1000000", true},
      {"exp_taylor", "-1000 0 1/1000 1", false},
      {"exp_taylor", "0 1000 1 1000000", false},
      {"exp_taylor", "0 0 1 1", true},
      {"sinh_taylor", "-1 1/2 -6/5 1", true},
      {"sinh_taylor", "-1 1/2 -1 1", false},
      {"cosh_taylor", "-2 1 1 4", true},
      {"cosh_taylor", "-2 1 1 3", false},
      {"cosh_taylor", "-2 1 6/5 4", false},
      {"cosh_taylor", "1 2 2 4", false},
      {"tanh_taylor", "-5000 5000 -1 1", true},
      {"tanh_taylor", "5000 5000 999/1000 1", true},
      {"tanh_taylor", "-1 5000 -1/2 1", false},
      {"sin_taylor", "1 2 4/5 1", true},
      {"sin_taylor", "1 2 4/5 99/100", false},
      {"sin_taylor", "-2 -1 -99/100 -4/5", false},
      {"sin_taylor", "2 7 -1 1", true},
      {"sin_taylor", "2 7 -99/100 1", false},
      {"sin_taylor", "0 6 -1 99/100", false},
      {"sin_taylor", "-1000 1000 -1 1", true},
      {"sin_taylor", "-1000 1000 -1 99/100", false},
      {"cos_taylor", "0 3 -1 1", true},
      {"cos_taylor", "0 3 -99/100 1", true},
      {"cos_taylor", "0 4 -99/100 1", false},
      {"cos_taylor", "-1 1 1/2 99/100", false},
      {"tan_taylor", "-3/2 3/2 -15 15", true},
      {"tan_taylor", "1 2 -3 2", false},
      {"tan_taylor", "2 4 -3 2", true},
      {"tan_taylor", "-3/2 5 -15 15", false},
      {"log_by_exp", "1 2 0 7/10", true},
      {"log_by_exp", "1 2 1/1000000 7/10", false},
      {"log_by_exp", "0 2 -1000 7/10", false},
      {"asin_by_sin", "-1 1 -11/7 11/7", true},
      {"asin_by_sin", "-1 1 -11/7 3/2", false},
      {"asin_by_sin", "-1 1 -3/2 11/7", false},
      {"asin_by_sin", "1/2 1/2 1/2 8/3", true},
      {"asin_by_sin", "-19/20 0 -3/2 -1/2", false},
      {"asin_by_sin", "-19/20 -19/20 -2 -19/10", false},
      {"asin_by_sin", "1/2 2 1/2 3", false},
      {"asin_by_sin", "1/2 1/2 63/10 7", false},
      {"acos_by_cos", "-1 1 0 22/7", true},
      {"acos_by_cos", "-1 1 0 3", false},
      {"acos_by_cos", "-1 1 1/100 22/7", false},
      {"acos_by_cos", "-9/10 -9/10 4 5", false},
      {"acos_by_cos", "9/10 9/10 -1 -1/2", false},
      {"acos_by_cos", "9/10 9/10 0 0", false},
      {"acos_by_cos", "-2 0 1 4", false},
      {"atan_by_tan", "-1000 1000 -11/7 11/7", true},
      {"atan_by_tan", "-1000 1000 -3/2 11/7", false},
      {"atan_by_tan", "1 1 5/2 3", false},
      {"atan_by_tan", "-1 -1 -3 -5/2", false},
      {"pi_by_sin", "0 0 3 4", true},
      {"pi_by_sin", "0 0 1 5", true},
      {"pi_by_sin", "0 0 22/7 4", false},
      {"pi_by_sin", "0 0 3 3", false},
      {"pi_by_sin", "0 0 -6 -2", false},
      {"pi_by_sin", "0 0 13/2 10", false},
      {"power", "-3 2 0 9 2", true},
      {"power", "-3 2 1 9 2", false},
      {"power", "-3 -2 4 9 2", true},
      {"power", "-3 2 -27 8 3", true},
      {"power", "-3 -2 -1/2 -1/3 -1", true},
      {"power", "-3 2 -9 9 -1", false},
      {"power", "-3 2 1 1 0", true},
      {"power", "4 9 8 27 3/2", true},
      {"power", "4 9 8 26 3/2", false},
      {"power", "-8 8 -2 2 1/3", false},
      {"root_by_power", "-8 27 -2 3 3", true},
      {"root_by_power", "-8 27 -1 3 3", false},
      {"root_by_power", "-4 4 -2 2 2", false},
      {"root_by_power", "1/4 4 1/2 2 2", true},
      {"root_by_power", "1/4 1/4 -1/2 -1/2 2", false},
      {"root_by_power", "4 4 1/2 1/2 -2", false},
      {"quotient", "1 2 1/4 1 4", true},
      {"quotient", "1 2 0 9 0", false},
  };
  std::string lines;
  std::vector<std::string> expected;
  for (auto const& [theorem, numbers, follows] : table) {
    std::istringstream words(numbers);
    std::vector<QNumber> q;
    for (std::string word; words >> word;) q.push_back(convert::parse_rational(word));
    bool const is_binary = q.size() == 5;
    Certificate certificate{"something else", {{"number", {}, {}, q[0], q[1]}}};
    if (is_binary) certificate.claims.push_back({"number", {}, {}, q[4], q[4]});
    Claim claim{theorem, {40}, {1}, q[2], q[3]};
    if (is_binary) claim.arguments.clear(), claim.premises.push_back(2);
    if (claim.theorem == "pi_by_sin") claim.premises.clear();
    certificate.claims.push_back(claim);
    lines += to_json_lines(certificate);
    expected.push_back("rejected: claim " + std::to_string(certificate.claims.size()) + ": " +
                       (follows ? "is not what the first line states" : "does not follow"));
  }
  EXPECT_EQ(judge_by_both({lines}), expected);
}

TEST(Checkers, TakeOneSpellingAndRefuseBeforeTheWork) {
  std::string const first = R"({"certificate":"1","claims":"1","statement":")";
  std::string const claim = R"({"theorem":"number","arguments":[],"premises":[],"lower":")";
  auto const about = [&](std::string const& a, std::string const& b) {
    return first + "[" + a + ", " + b + "]\"}\n" + claim + a + R"(","upper":")" + b + "\"}\n";
  };
  auto const by = [&](std::string const& theorem, std::string const& arguments) {
    return R"({"certificate":"1","claims":"2","statement":"f"})"
           "\n" +
           claim +
           R"(1","upper":"1"})"
           "\n"
           R"({"theorem":")" +
           theorem + R"(","arguments":[)" + arguments +
           R"(],"premises":["1"],"lower":"0","upper":"9"})"
           "\n";
  };
  std::string const misspelled = "no certificate: a line that is not spelled as it should be";
  std::string const unreduced = "no certificate: a number that is not in lowest terms";
  struct {
    std::string lines;
    std::string verdict;
  } const table[] = {
      {about("-1/2", "3"), "accepted: [-1/2, 3] in [-1/2, 3]"},
      {about("3", "-1/2"), "rejected: claim 1: ends in the wrong order"},
      {about("2/4", "3"), unreduced},
      {about("1/1", "3"), unreduced},
      {about("0/2", "3"), unreduced},
      {about("-0", "3"), misspelled},
      {about("+1", "3"), misspelled},
      {about("01", "3"), misspelled},
      {about("1/0", "3"), misspelled},
      {about("1/-2", "3"), misspelled},
      {about("1 ", "3"), misspelled},
      {about("", "3"), misspelled},
      {about("1e3", "3000"), misspelled},
      {about("\xd9\xa1", "3"), misspelled},
      {about("\\u0031", "3"), misspelled},
      {about("1", std::string(2000000, '9')), "no certificate: too much work"},
      {"", misspelled},
      {"\n", misspelled},
      {first, misspelled},
      {first + "1\"}\n", "no certificate: wrong number of claims"},
      {first + "1\"}\n" + claim + "1\", \"upper\":\"1\"}\n", misspelled},
      {first + "1\"}\n" + claim + "1\",\"upper\":1}\n", misspelled},
      {first + "1\"}\n" + claim + "1\",\"upper\":\"1\",\"upper\":\"1\"}\n", misspelled},
      {first + "1\"}\r\n" + claim + "1\",\"upper\":\"1\"}\n", misspelled},
      {first + "1\"}\n" + claim + "1\",\"upper\":\"1\"}\n\n",
       "no certificate: wrong number of claims"},
      {first + "1\"}\n" + claim + "1\",\"upper\":\"1\"}", "accepted: 1 in [1, 1]"},
      {first + "2\"}\n" + claim + "1\",\"upper\":\"1\"}",
       "rejected: claim 1: is not what the first line states"},
      {R"({"certificate":"2","claims":"1","statement":"1"})"
       "\n" +
           claim + "1\",\"upper\":\"1\"}",
       "no certificate: an unknown version"},
      {by("exp_taylor", R"("16777217")"), "rejected: claim 2: an argument out of range"},
      {by("exp_taylor", R"("7")"), "rejected: claim 2: an argument out of range"},
      {by("exp_taylor", R"("16777216")"), "rejected: claim 2: too much work"},
      {by("exp_taylor", R"("9999999999")"), misspelled},
      {by("exp_taylor", R"("1/2")"), misspelled},
      {by("exp_taylor", R"("-9")"), misspelled},
      {by("exp_taylor", R"(true)"), misspelled},
      {by("exp_taylor", R"("9","9","9","9")"), misspelled},
      {by("exp_taylor", R"("9","9")"), "rejected: claim 2: wrong number of arguments"},
      {by("sum", ""), "rejected: claim 2: wrong number of premises"},
      {by("number", ""), "rejected: claim 2: wrong number of premises"},
      {by("", ""), "rejected: claim 2: an unknown theorem"},
  };
  std::vector<std::string> texts, expected;
  Certificate doubled{"2^29", {{"number", {}, {}, 1, 1}}};
  for (std::size_t i = 1; i < 30; ++i)
    doubled.claims.push_back({"sum", {}, {i, i}, 1L << i, 1L << i});
  texts.push_back(to_json_lines(doubled));
  expected.push_back("rejected: claim 24: too long a statement");
  for (auto const& [lines, verdict] : table) {
    texts.push_back(lines);
    expected.push_back(verdict);
  }
  EXPECT_EQ(judge_by_both(texts), expected);
}

}  // namespace

}  // namespace zelk::verify
