#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/certify/judge.h"
#include "zelk/certify/prove.h"
#include "zelk/certify/statement.h"
#include "zelk/certify/write.h"
#include "zelk/convert/text.h"
#include "zelk/numbers/functions.h"
#include "zelk/real/parse.h"

namespace zelk::verify {

namespace {

using certify::to_json_lines;
using test::judge_by_both;

std::vector<QNumber> numbers_of(std::string const& text) {
  std::istringstream words(text);
  std::vector<QNumber> numbers;
  for (std::string word; words >> word;) numbers.push_back(convert::parse_rational(word));
  return numbers;
}

/// That a function is from l to u on [a, b], told a, b, l, u, and the second operand if there is
/// one; but the statement is wrong.
Certificate claimed(std::string const& theorem, std::vector<QNumber> const& q) {
  Certificate certificate{"something else", {{"number", {}, {}, q[0], q[1]}}};
  Claim claim{theorem, {40}, {1}, q[2], q[3]};
  if (theorem == "pi_by_sin") claim.premises.clear();
  if (q.size() == 5) {
    certificate.claims.push_back({"number", {}, {}, q[4], q[4]});
    claim.arguments.clear(), claim.premises.push_back(2);
  }
  certificate.claims.push_back(claim);
  return certificate;
}

TEST(Checkers, AcceptUpToTheLimitsOfTheorems) {
  struct {
    char const *theorem, *follow, *do_not;
  } const table[] = {
      {"exp_taylor", "-1000000 -1000 0 1/1000000; 0 0 1 1",
       "-1000 0 1/1000 1; 0 1000 1 1000000; -1000 0 1e-18 1"},
      {"sinh_taylor", "-1 1/2 -6/5 1", "-1 1/2 -1 1; -1 1/2 -6/5 1/2"},
      {"cosh_taylor", "-2 1 1 4", "-2 1 1 3; -2 1 6/5 4; 1 2 2 4"},
      {"tanh_taylor", "-5000 5000 -1 1; 5000 5000 999/1000 1", "-1 5000 -1/2 1; -1 1 -1 3/4"},
      {"sin_taylor", "1 2 4/5 1; 2 7 -1 1; -1000 1000 -1 1",
       "1 2 4/5 99/100; -2 -1 -99/100 -4/5; 2 7 -99/100 1; 0 6 -1 99/100; -1000 1000 -1 99/100"},
      {"cos_taylor", "0 3 -1 1; 0 3 -99/100 1", "0 4 -99/100 1; -1 1 1/2 99/100"},
      {"tan_taylor", "-3/2 3/2 -15 15; 2 4 -3 2; -1.51 1.51 -17 17",
       "1 2 -3 2; -3/2 5 -15 15; 1 5 1 2; 0 1 0 1; 0 1 1/2 2"},
      {"log_by_exp", "1 2 0 7/10", "1 2 1/1000000 7/10; 0 2 -1000 7/10; 1 2 0 6/10"},
      {"asin_by_sin", "-1 1 -11/7 11/7; 1/2 1/2 1/2 8/3; 1/2 1/2 -3 3",
       "-1 1 -11/7 3/2; -1 1 -3/2 11/7; -19/20 0 -3/2 -1/2; -19/20 -19/20 -2 -19/10; 1/2 2 1/2 3; "
       "1/2 1/2 63/10 7; -2 0 -3 1; 1/2 1/2 -3.1 1; 1/2 1/2 0 3.1"},
      {"acos_by_cos", "-1 1 0 22/7; -1 1 -9 6",
       "-1 1 0 3; -1 1 1/100 22/7; -9/10 -9/10 4 5; 9/10 9/10 -1 -1/2; 9/10 9/10 0 0; -2 0 1 4; "
       "0 2 0 2; 1/2 1/2 0 6.1"},
      {"atan_by_tan", "-1000 1000 -11/7 11/7", "-1000 1000 -3/2 11/7; 1 1 5/2 3; -1 -1 -3 -5/2"},
      {"pi_by_sin", "0 0 3 4; 0 0 1 5", "0 0 22/7 4; 0 0 3 3; 0 0 -6 -2; 0 0 13/2 10; 0 0 3 6"},
      {"power",
       "-3 2 0 9 2; -3 -2 4 9 2; -3 2 -27 8 3; -3 -2 -1/2 -1/3 -1; -3 2 1 1 0; 4 9 8 27 3/2",
       "-3 2 1 9 2; -3 2 -9 9 -1; 4 9 8 26 3/2; -8 8 -2 2 1/3; 2 3 5 6 0; -1 0 -2 -1 -1; "
       "0 1 1 2 -1"},
      {"root_by_power", "-8 27 -2 3 3; 1/4 4 1/2 2 2",
       "-8 27 -1 3 3; -4 4 -2 2 2; 1/4 1/4 -1/2 -1/2 2; 4 4 1/2 1/2 -2; 4 4 2 2 1/2"},
      {"quotient", "1 2 1/4 1 4", "1 2 0 9 0; 1 2 0 9 -1"},
  };
  std::string lines;
  std::vector<std::string> expected;
  auto const expect = [&](std::string const& theorem, std::vector<QNumber> const& q, bool follows) {
    lines += to_json_lines(claimed(theorem, q));
    expected.push_back("rejected: claim " + std::to_string(q.size() == 5 ? 3 : 2) + ": " +
                       (follows ? "is not what the first line states" : "does not follow"));
  };
  for (auto const& [theorem, follow, do_not] : table)
    for (auto const* list : {follow, do_not}) {
      std::istringstream rows(list);
      for (std::string row; std::getline(rows, row, ';');)
        expect(theorem, numbers_of(row), list == follow);
    }
  // Ends as near to the value as a check of 40 bits gets, in units of 2^-b: both round alike.
  for (auto const& [theorem, x_b_ends] :
       {std::pair{"sin_taylor", "13/3 72 -4387146942900907776991 -4387146942900904543207"},
        {"exp_taylor", "13/3 72 359834203946704750329879 359834203946704848559519"},
        {"sinh_taylor", "1/1073741824 54 16777210 16777222"}})
    for (long const i : {0, 1, 2}) {
      auto const q = numbers_of(x_b_ends);
      auto const unit = pow(2, -q[1].small_numerator());
      expect(theorem, {q[0], q[0], (q[2] + i % 2) * unit, (q[3] - i / 2) * unit}, i == 0);
    }
  EXPECT_EQ(judge_by_both({lines}), expected);
}

/// A certificate that takes work of each kind, and long series, is accepted with so many units, and
/// not with one less.
TEST(Checkers, CountTheSameWork) {
  real::ElementaryFunctions functions;
  auto const expression = real::parse_expression("(exp(254/17) + sin(2))^3");
  auto const lines = to_json_lines(certify::prove(functions, expression, 6000).certificate);
  auto const least = [&](auto const& is_enough) {
    double enough = 0x1p40;
    for (double step = enough / 2; step >= 1; step /= 2)
      if (is_enough(test::judge(lines, {enough - step}, {}))) enough -= step;
    return enough;
  };
  double const to_read = least([](auto const& v) { return !v.starts_with("no certificate"); });
  double const to_accept = least([](auto const& v) { return v.starts_with("accepted"); });
  for (double const work : {to_read - 1, to_read, to_accept - 1, to_accept})
    judge_by_both({lines}, {work});
}

TEST(Checkers, HoldWhatWasAskedAgainstWhatIsShown) {
  struct {
    Question asked;
    char const *ends, *verdicts;  // of numbers
  } const table[] = {
      {{"[0, 1/10]", 1}, "0 1/10 0 1/9", "+d"},
      {{{}, 1}, "3 3.1 3 3.11 7 7", "+w+"},
      {{{}, 1, true}, "10 11 10 11.1 -11 -10 -1 1 0 1/100 0 0", "+w+ww+"},
      {{{}, 1UL << 40}, "1 1 0 1/2", "+w"},
  };
  for (auto const& [asked, ends, expected] : table) {
    std::string lines, verdicts;
    auto const q = numbers_of(ends);
    for (auto x = q.begin(); x != q.end(); x += 2)
      lines += to_json_lines(
          {certify::statement_of(real::Interval(x[0], x[1])), {{"number", {}, {}, x[0], x[1]}}});
    for (auto const& verdict : judge_by_both({lines}, {}, asked))
      verdicts += verdict.starts_with("accepted")                       ? '+'
                  : verdict.ends_with(": is wider than what was asked") ? 'w'
                                                                        : verdict.back();
    EXPECT_EQ(verdicts, expected);
  }
}

TEST(Checkers, TakeOneSpellingAndRefuseBeforeTheWork) {
  std::string const claim = R"({"theorem":"number","arguments":[],"premises":[],"lower":")";
  std::string const number = claim + R"(1","upper":"1"})";
  auto const counted = [](std::string const& count, std::string const& statement,
                          std::string const& rest) {
    return R"({"certificate":"1","claims":")" + count + R"(","statement":")" + statement + "\"}\n" +
           rest;
  };
  auto const about = [&](std::string const& a, std::string const& b) {
    return counted("1", "[" + a + ", " + b + "]", claim + a + R"(","upper":")" + b + "\"}\n");
  };
  auto const by = [&](std::string const& theorem, std::string const& arguments,
                      std::string const& premises = R"("1")", std::string const& x = "1") {
    return counted("2", "f",
                   claim + x + R"(","upper":")" + x + "\"}\n{\"theorem\":\"" + theorem +
                       R"(","arguments":[)" + arguments + R"(],"premises":[)" + premises +
                       R"(],"lower":"0","upper":"9"})" + "\n");
  };
  auto const long_one = [&](std::size_t bytes) {
    auto text = counted("2", "1", "");
    return text.append(bytes - text.size(), 'x');
  };
  std::vector<std::string> texts, expected;
  auto const expect = [&](std::string const& verdict, std::vector<std::string> const& all) {
    texts.insert(texts.end(), all.begin(), all.end());
    expected.insert(expected.end(), all.size(), verdict);
  };
  expect("accepted: [-1/2, 3] in [-1/2, 3]", {about("-1/2", "3")});
  expect("accepted: 1 in [1, 1]", {counted("1", "1", number)});
  expect("rejected: claim 1: ends in the wrong order", {about("3", "-1/2")});
  expect("rejected: claim 1: is not what the first line states", {counted("1", "2", number)});
  for (char const* const word : {"2/4", "1/1", "0/2"})
    expect("no certificate: a number that is not in lowest terms", {about(word, "3")});
  std::string const misspelled = "no certificate: a line that is not spelled as it should be";
  for (char const* const word :
       {"-0", "+1", "01", "1/0", "1/-2", "1 ", "", "1e3", "\xd9\xa1", "\\u0031"})
    expect(misspelled, {about(word, "3000")});
  for (char const* const arguments :
       {R"("9999999999")", R"("1/2")", R"("-9")", "true", R"("9","9","9","9")"})
    expect(misspelled, {by("exp_taylor", arguments)});
  for (char const* const end : {R"(1", "upper":"1"})", R"(1","upper":1})", R"(1","upper":"1","})"})
    expect(misspelled, {counted("1", "1", claim + end)});
  expect(misspelled,
         {"", "\n", counted("1", "1", "").substr(0, 40), counted("1", "1\"}\r", number),
          by("exp_taylor", R"("9")", R"("0")"), counted("65536", "1", std::string(65536, '\n'))});
  expect("no certificate: too much work", {about("1", std::string(2000000, '9'))});
  expect("no certificate: wrong number of claims",
         {counted("1", "1", ""), counted("1", "1", number + "\n\n"), counted("01", "1", number),
          counted("0", "1", ""), counted("65536", "1", std::string(65537, '\n')),
          counted("65537", "1", std::string(65537, '\n'))});
  expect("no certificate: longer than allowed", {long_one((1 << 26) + 1)});
  expect("no certificate: an unknown version", {counted("1", "1", number).replace(16, 1, "2")});
  std::string const reject = "rejected: claim 2: ", first = R"("1")", power = R"("1","1")";
  expect(reject + "an argument out of range",
         {by("exp_taylor", R"("16777217")"), by("exp_taylor", R"("7")"),
          by("power", "", power, "16777217")});
  expect(reject + "too much work",
         {by("exp_taylor", R"("16777216")"), by("exp_taylor", R"("40")", first, "549755813888"),
          by("power", "", power, "16777216")});
  expect(reject + "too great a number", {by("exp_taylor", R"("40")", first, "1099511627776")});
  expect(reject + "wrong number of arguments", {by("exp_taylor", R"("9","9")")});
  expect(reject + "wrong number of premises", {by("sum", ""), by("number", "")});
  expect(reject + "a premise that does not stand before", {by("negative", "", R"("2")")});
  expect(reject + "an unknown theorem", {by("", "")});
  Certificate doubled{"2^29", {{"number", {}, {}, 1, 1}}};
  for (std::size_t i = 1; i < 30; ++i)
    doubled.claims.push_back({"sum", {}, {i, i}, 1L << i, 1L << i});
  expect("rejected: claim 24: too long a statement", {to_json_lines(doubled)});
  // What stands before does not count.
  expect("accepted: 1 in [1, 1]", {counted("1", "1", number + "\n") + long_one(1 << 26)});
  expected.emplace_back("no certificate: wrong number of claims");
  EXPECT_EQ(judge_by_both(texts), expected);
  EXPECT_STREQ(verify({"(-1)", {{"negative", {}, {0}, 1, 1}}}).reason.c_str(),
               "a premise that does not stand before");
}

/// What a power means is said of positive numbers, and of nothing else.
TEST(Checkers, TakePowersByTheirMeaning) {
  real::ElementaryFunctions functions;
  auto const expression = real::parse_expression("(1+1)^(1/10000000019)");
  auto power = certify::prove(functions, expression, 9).certificate;
  auto& claims = power.claims;
  claims.push_back(claims.back());
  claims.end()[-2] = {"sum", {}, {1, 1}, 0, 5};
  auto lines = to_json_lines(power);
  claims.back().premises[0] = claims.size() - 1;
  lines += to_json_lines(power);
  claims.back().premises[2] = 1;
  auto const verdicts = judge_by_both({lines + to_json_lines(power)});
  EXPECT_EQ(verdicts[0].substr(0, 9), "accepted:");
  EXPECT_NE(verdicts[1].find(": does not follow"), std::string::npos);
  EXPECT_NE(verdicts[2].find(": a premise about something else"), std::string::npos);
}

}  // namespace

}  // namespace zelk::verify
