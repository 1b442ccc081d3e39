#include "zelk/real/expression.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/text_form.h"
#include "zelk/convert/text.h"
#include "zelk/numbers/functions.h"
#include "zelk/real/enclose.h"
#include "zelk/real/parse.h"

namespace zelk::real {
namespace {

using convert::parse_rational;

QNumber unit(unsigned digits) { return zelk::pow(10, -static_cast<long>(digits)); }

template <class Number>
std::string show(std::vector<Number> const& all) {
  std::string text;
  for (auto const& each : all) text += (text.empty() ? "" : " ") + test::show(each);
  return text;
}

class Expressions : public testing::Test {
 protected:
  Enclosure enclosure(std::string const& text, Accuracy accuracy = 20) {
    return enclose(functions, parse_expression(text), accuracy);
  }

  /// What the text is refused with.
  template <class Error>
  std::string refusal(std::string const& text, unsigned most_digits = 200) {
    try {
      (void)enclose(functions, parse_expression(text), 20, most_digits);
    } catch (Error const& error) {
      return error.what();
    }
    return "";
  }

  ElementaryFunctions functions;
};

/// By mpmath, whose arithmetic is not this library's.
struct {
  char const* text;
  char const* value;     // to 74 places, or digits
  bool is_long = false;  // asked for once
} const numbers[] = {
    {"log(3/2)/log(2)",
     "0.584962500721156181453738943947816508759814407692481060455752654541098227794"},
    {"exp(1000)*exp(-1000) - pi",
     "-2.14159265358979323846264338327950288419716939937510582097494459230781640629"},
    {"exp(-exp(5))",
     "3.50738919646462309641978457800594771069903860726267608051761145832448024515e-65"},
    {"10^300*sin(10^-300)", "1"},  // nearly
    {"exp(pi*sqrt(163))",
     "262537412640768743."
     "99999999999925007259719818568887935385633733699086270753741037821064791012"},
    {"exp(100000)/exp(100001)",
     "0.367879441171442321595523770161460867445811131031767834507836801697461495745"},
    {"(1 + 10^-9)^(10^9)",
     "2.71828182709990432237664402386033286282501316408961859406938546699661942170"},
    {"(1 - 10^-30)^(10^33)*exp(1000)",
     "0.9999999999999999999999999995000000000000000000000000001246666666666666666667"},
    {"sin(exp(100)) + e",
     "2.86047995211728387313273777783134775409198470326383759862589421731826895346"},
    {"2^pi - pi^2^-1",
     "7.05252397617077159655826212086685639890686135914909779845515207520245880248"},
    {"1.5e-3^-.25*(-.2)",
     "-1.01626549630922947256041048675695514350537723315375622517200383202864434565"},
    {"-2^.5^2 + ln(5.)",
     "0.420230797431379307883259362665711724232629261804700308893645666754712319481"},
    {"root(-2, 3)*atan(1/7)",
     "-0.178779086013868355723096902717235858782469129646142389204647919188091835049"},
    {"asin(1) - acos(-1/3)",
     "-0.339836909454121937096392513391764066388244690332458071431923962489915888665"},
    {"cos(3)*tan(4)",
     "-1.14623438193038758539493603857800863583430163551462699181781205298873681422"},
    {"sinh(1/3)/cosh(2)+tanh(-1)",
     "-0.671343519057514730985077419345063898885960571813637392117007744636668942966"},
    {"1/exp(-1000)/10^435",
     "0.197007111401704699388887935224332312531693798532384578995280299138506385078"},
    {"root(-2, 10^15 + 1)",
     "-1.00000000000000069314718055994485649655852061384768266994840485151445918644"},
    // An operand may be beyond the domain, or too great, until there are digits enough.
    {"exp(10^54*(sin(1)^2 + cos(1)^2 - 1 + 10^-55))",
     "1.10517091807564762481170782649024666822454719473751871879286328944096796674"},
    {"1/cosh(10^60*(sin(1)^2 + cos(1)^2 - 1))", "1"},
    {"asin(10^40*(sin(1)^2 + cos(1)^2 - 1) + 1/2)",
     "0.523598775598298873077107230546583814032861566562517636829157432051302734381"},
    {"2^(10^54*(sin(1)^2 + cos(1)^2 - 1 + 10^-54))", "2"},
    {"pi + acos(cos(10^-300)) + sqrt(1 - tanh(1000)) + sqrt(cosh(10^-90) - 1)",  // nearly
     "3.14159265358979323846264338327950288419716939937510582097494459230781640629"},
    // Before the digits stand more zeros than are held at first.
    {"(2/3)^(2*10^6)*1.5^(2*10^6)", "1", true},
    {"exp(-750001)*atan(exp(-10))/(exp(-750000)*atan(exp(-10)))",
     "0.367879441171442321595523770161460867445811131031767834507836801697461495745", true},
    {"root(2, 1000)",
     "1.00069338746258063253756863930385919570829351098020007150877772317929563141"},
};

TEST_F(Expressions, HoldTheirNumbersAndAreNarrowAndShort) {
  for (auto const& [text, value, is_long] : numbers) {
    auto const truth = parse_rational(value);
    auto const error = unit(73) * abs(truth);
    for (auto const accuracy : {Accuracy(0), Accuracy(20), Accuracy(60), Accuracy::relative(1),
                                Accuracy::relative(20), Accuracy::relative(70)}) {
      if (is_long && accuracy.digits() != 70) continue;
      auto const [found, is_narrow] = enclosure(text, accuracy);
      EXPECT_TRUE(is_narrow && found.lower() <= truth + error && truth - error <= found.upper())
          << text;
      auto const scale = accuracy.is_relative() ? abs(truth) + error : QNumber(1);
      EXPECT_TRUE(found.width() <= scale * unit(accuracy.digits())) << text;
      EXPECT_LT(test::show(found.lower()).size(), 70 + 2 * accuracy.digits()) << text;
    }
  }
}

TEST_F(Expressions, AreExactWhereThatIsKnown) {
  std::istringstream rows(
      "(1 + 10^-50) - 1 = 1e-50; -2^2 = -4; 2^-1 = 0.5; 2^3^2 = 512; 8/4/2 = 1; 8-4-2 = 2; "
      "2*-3^2 = -18; --2 = 2; 2^-1^2*3 = 1.5; 1/3*[3, 3] = 1; sqrt(4) = 2; root(8, 3) = 2; "
      "root(1, 9) = 1; root(-8, 1+2) = -2; 4^(1/2) = 2; (4/9)^-1.5 = 3.375; "
      "(10^50)^(1/50) = 10; ((3/2)^999)^(-2/999) = 4/9; exp(0) + log(1) = 1; 0*exp(5) = 0; "
      "pi^0 = 1; 1^(10^100) = 1; (-1)^(10^100) = 1; 1^pi = 1; 4^sqrt(1/4) = 2; .5 + 5. + 5.e1 = "
      "55.5");
  for (std::string row; std::getline(rows, row, ';');) {
    auto const equals = row.find('=');
    auto const exact = parse_rational(row.substr(equals + 2));
    EXPECT_TRUE(enclosure(row.substr(0, equals)).bounds == Interval(exact)) << row;
  }
}

/// An input that has a width: both ends are as near as digits to those of the natural extension.
TEST_F(Expressions, OverIntervalsHaveTheEndsOfTheNaturalExtension) {
  struct {
    char const* text;
    char const* lower;
    char const* upper;
  } const rows[] = {
      {"exp(1/3) - sqrt(2)*[0.1, 0.2]", "1.11276971261147051886778757476064722188397214",
       "1.25419106884878002374795644718161702974093933"},
      {"[0, 1] - [0, 1]", "-1", "1"},
      {"[-1/2, +2]/[2, 4]*-1", "-1", "0.25"},
      {"([-2, 1]*pi)^2", "0", "39.4784176043574344753379639995046045412547976"},
      {"sin([0, 4])", "-0.756802495307928251372639094511829094135912887", "1"},
      {"sin(exp(100))*[1, 2]", "0.14219812365823863777245030647868525633473760956388",
       "0.28439624731647727554490061295737051266947521912776"},
      {"[1, 2]^pi", "1", "8.82497782707628762385642960420800158170441082"},
      {"[1, 2]^[-1, 1]", "0.5", "2"},
      {"sqrt(2)*[1/3, 1/3] + log([1, 3])", "0.471404520791031682933896241403232692856557292",
       "1.57001680945914137432914147832575839750404784961506547612692"},
      {"cosh(log(exp([-2, 1])))", "1", "3.76219569108363145956221347777374610829397356"},
      {"1/root([1, 4]*[1, 2], 3)", "0.5", "1"},
      {"10^30*(exp([1e-40, 2e-40]) - 1)", "1e-10", "2e-10"},
  };
  for (auto const& [text, lower, upper] : rows)
    for (auto const accuracy : {Accuracy(0), Accuracy(9), Accuracy(40), Accuracy::relative(20)}) {
      auto const [found, is_narrow] = enclosure(text, accuracy);
      auto const error = unit(43), low = parse_rational(lower), high = parse_rational(upper);
      auto const outside = [&](QNumber const& distance, QNumber const& end) {
        auto const allowed =
            unit(accuracy.digits()) * (accuracy.is_relative() ? abs(end) : QNumber(1));
        return -error <= distance && distance <= allowed + error;
      };
      EXPECT_TRUE(outside(low - found.lower(), low) && outside(found.upper() - high, high)) << text;
      EXPECT_EQ(is_narrow, found.width() <= unit(accuracy.digits())) << text;
    }
  EXPECT_TRUE(enclosure("exp([-1000000, 0])/exp(-999999)", Accuracy::relative(5)).bounds.lower() >
              QNumber(36, 100));
  // So narrow an input may be narrow enough.
  EXPECT_TRUE(enclosure("pi*[1, 1.000000000000000000000000000001]").is_narrow);
}

TEST_F(Expressions, AreRefusedWhereTheyAreNotDefined) {
  struct {
    char const* text;
    char const* reason;
  } const rows[] = {
      {"log(0)", "log of what is not positive"},
      {"log([0, 1])", "log of what is not positive"},
      {"log(sin(4))", "log of what is not positive"},
      {"log([-1, 1]*pi)", "log of what is not positive"},
      {"log(sin(1)^2 + cos(1)^2 - 1)",
       "log of what is not positive, perhaps: 200 digits do not tell"},
      {"asin(sin(1)^2 + cos(1)^2)",
       "asin of what lies beyond -1 and 1, perhaps: 200 digits do not tell"},
      {"acos(pi)", "acos of what lies beyond -1 and 1"},
      {"1/(2/2 - 1)", "division by 0"},
      {"1/([1, 3]*pi - 4)", "division by an interval that holds 0"},
      {"1/(exp(1) - e)", "division by an interval that holds 0, perhaps: 200 digits do not tell"},
      {"tan([1, 2]*pi/3)", "tan of an interval that holds a pole"},
      {"tan(pi/2)", "tan of an interval that holds a pole, perhaps: 200 digits do not tell"},
      {"sqrt(-pi)", "even root of what is negative"},
      {"root(2, 0)", "the degree of a root is not known to be a positive integer"},
      {"root(2, [2, 3])", "the degree of a root is not known to be a positive integer"},
      {"(-8)^(1/3)", "fractional power of what is negative"},
      {"0^-1", "a negative power of an interval that holds 0"},
      {"(-2)^pi", "power of what is not positive to what is not known to be rational"},
  };
  for (auto const& [text, reason] : rows)
    EXPECT_EQ(refusal<std::domain_error>(text), reason) << text;
  for (char const* const text : {"2^(10^9)", "((2^1000)^1000)^1000", "2^2^2^2^2^2", "exp(10^10)",
                                 "exp(exp(exp(5)))", "1/exp(-10^9)", "tanh(10^-54)^sinh(-100)"})
    EXPECT_NE(refusal<std::length_error>(text), "") << text;
  EXPECT_THROW((void)enclosure("1/3", 2000000000), std::length_error);  // at once
  EXPECT_EQ(refusal<std::invalid_argument>("x + 1"), "the variable x has no value");
  // Here more precision decides.
  EXPECT_EQ(enclosure("log(exp(-5000) + 10^-3000) - log(exp(-5000))", 5).bounds.sign(), 0);
  EXPECT_TRUE(enclosure("1/(1/3 - atan(tan(1/3 - 10^-40)))").bounds.contains(zelk::pow(10, 40)));
}

TEST_F(Expressions, HaveCertainTerms) {
  struct {
    char const* text;
    char const* terms;
    bool is_whole = false;
    unsigned most = 20;
  } const rows[] = {
      {"pi", "3 7 15 1 292 1 1 1 2 1 3 1 14 2 1 1 2 2 2 2"},
      {"-pi", "-4 1 6 15 1 292 1 1 1 2 1 3 1 14 2 1 1 2 2 2"},
      {"e", "2 1 2 1 1 4 1 1 6 1 1 8 1 1 10 1 1 12 1 1"},
      {"log(3/2)/log(2)", "0 1 1 2 2 3 1 5 2 23 2 2 1 1 55 1 4 3 1 1"},
      {"sqrt(2)", "1 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2"},
      {"exp(pi*sqrt(163))", "262537412640768743 1 1333462407511 1 8", false, 5},
      {"415/93", "4 2 6 7", true},
      {"415/93", "4 2", false, 2},
      {"pi", "", false, 0},
      {"0", "0", true},
      {"sin(1)^2 + cos(1)^2", ""},  // 1, or a little less
      {"(sin(1)^2 + cos(1)^2)/7 + 1/2", "0 1 1 1"},
      {"[3141/1000, 3142/1000]", "3 7"},
      {"pi*[1, 1.000000001]", "3 7 15 1"},
  };
  for (auto const& [text, expected, is_whole, most] : rows) {
    auto const found = terms(functions, parse_expression(text), most, 200);
    EXPECT_EQ(show(found.terms), expected) << text;
    EXPECT_EQ(found.is_whole, is_whole) << text;
  }
  EXPECT_EQ(terms(functions, Expression::pi(), 1000).terms.size(), 1000U);
  EXPECT_EQ(show(convergents(functions, Expression::pi(), 4)), "3 22/7 333/106 355/113");
}

TEST_F(Expressions, HaveCertainBestFractions) {
  auto const all = [&](std::string const& text, QNumber const& limit) {
    auto const expression = parse_expression(text);
    std::string answers;
    for (auto* best : {best_below, best_nearest, best_above}) {
      auto const answer = best(functions, expression, limit, 200);
      answers += answer ? test::show(*answer) + ' ' : "- ";
    }
    return answers;
  };
  EXPECT_EQ(all("pi", 100), "311/99 311/99 22/7 ");
  EXPECT_EQ(all("-pi", 113), "-355/113 -355/113 -333/106 ");
  EXPECT_EQ(all("3/7", 7), "3/7 3/7 3/7 ");
  EXPECT_EQ(all("3/7", 6), "2/5 2/5 1/2 ");
  EXPECT_EQ(all("sin(1)^2 + cos(1)^2", 10), "- 1 - ");
  EXPECT_EQ(all("[3.1415, 3.1416]", 10), "25/8 22/7 22/7 ");
  EXPECT_THROW(all("pi", 0), std::domain_error);
}

TEST_F(Expressions, AreComparedForCertain) {
  for (std::string const row :
       {"> exp(pi) - pi^e", "< sin(355)", "> exp(-30000)", "< -10^-300*sin(1)", "= 1/3 + 1/6 - 1/2",
        "? sqrt(2)^2 - 2", "< exp(pi*sqrt(163)) - 262537412640768744", "= 2^100000 - 4^50000",
        "= (2^3000)^(1/3000) - 2", "> [1, 2]", "? [-1, 2]*pi", "? [0, 1]", "> exp(-10^9)",
        "< 1 - pi - exp(-10^9)^2", "< sinh(-exp(-10^9)/pi) + -cosh(-10)^(-10^9)",
        "> (-1/3)^(10^9 + 1)*(0 - sqrt(exp(-10^9)))", "? exp(-10^9) - exp(-10^9)",
        "> 10^-199*(sqrt(2)^2 - 2) + 10^-198"}) {
    auto const order = sign(functions, parse_expression(row.substr(1)), 200);
    EXPECT_EQ(order ? "<=>"[1 + (*order > 0) - (*order < 0)] : '?', row[0]) << row;
  }
  auto const pi = Expression::pi();
  EXPECT_EQ(compare(functions, pi, QNumber(355, 113)), std::strong_ordering::less);
  EXPECT_EQ(compare(functions, 4, sqrt(16)), std::strong_ordering::equal);
  EXPECT_EQ(compare(functions, sin(pi), 0, 100), std::nullopt);
}

TEST_F(Expressions, AreWrittenWithOperatorsAsInText) {
  auto const x = Expression::variable();
  std::pair<Expression, char const*> const rows[] = {
      {exp(QNumber(1, 3)) - sqrt(2) * Interval(QNumber(1, 10), QNumber(1, 5)),
       "exp([1/3, 1/3]) - sqrt(2)*[0.1, 0.2]"},
      {1 - pow(x, 2) / Expression::pi() + -Expression::e(), "1 - x^2/pi + -e"},
      {root(x, 3) * (Interval(1, 2) - log(x)), "root(x, 3)*([1, 2] - log(x))"},
      {sin(cos(tan(asin(acos(atan(sinh(cosh(tanh(x))))))))),
       "sin(cos(tan(asin(acos(atan(sinh(cosh(tanh(x)))))))))"},
      {(x + x).at(Interval(0, 1)), "[0, 1] + [0, 1]"},
  };
  for (auto const& [built, text] : rows) {
    auto const read = parse_expression(text);
    EXPECT_EQ(built.postfix(), read.postfix()) << text;
    EXPECT_EQ(built.numbers(), read.numbers()) << text;
  }
  using Kinds = std::vector<Kind>;
  for (auto const& kinds : {Kinds{Kind::sum}, Kinds{}, Kinds{Kind::pi, Kind::pi},
                            Kinds{Kind{static_cast<unsigned char>(Kind::tanh) + 1}},
                            Kinds{Kind::number}, Kinds{Kind::pi, Kind::sum}})
    EXPECT_THROW((void)Expression::from_postfix(kinds, {}), std::invalid_argument);
  Expression sum = 0;
  for (int i = 0; i < 100000; ++i) sum = std::move(sum) + 1;
  EXPECT_TRUE(enclose(functions, sum, 0).bounds == Interval(100000));
}

TEST(ExpressionTexts, AreRefusedWhereTheyAreWrong) {
  struct {
    char const* text;
    std::size_t column;
    char const* reason;
  } const rows[] = {
      {"", 1, "an operand is missing at the end"},
      {"1+", 3, "an operand is missing at the end"},
      {"2**3", 3, "expected an operand"},
      {"()", 2, "expected an operand"},
      {"(1", 1, "this parenthesis is not closed"},
      {"1+sin((2)", 6, "this parenthesis is not closed"},
      {"(1))", 4, "no parenthesis is open"},
      {"2 pi", 3, "expected an operator; a product is written with *"},
      {"2(3)", 2, "expected an operator; a product is written with *"},
      {"(2)[1, 2]", 4, "expected an operator; a product is written with *"},
      {"1.2.3", 4, "expected an operator; a product is written with *"},
      {"2e", 2, "expected an operator; a product is written with *"},
      {"1 ! 2", 3, "expected an operator"},
      {"1, 2", 2, "a comma stands between the arguments of a function only"},
      {"sin((1, 2))", 7, "a comma stands between the arguments of a function only"},
      {"1 + sin()", 8, "sin takes 1 argument, not 0"},
      {"sin(1, 2)", 4, "sin takes 1 argument, not 2"},
      {"root(2)", 5, "root takes 2 arguments, not 1"},
      {"root(2,)", 8, "expected an operand"},
      {"sin 1", 5, "expected ( after sin"},
      {"1 + sinn(2)", 5, "unknown name; did you mean sin?"},
      {"Exp(1)", 1, "unknown name; did you mean exp?"},
      {"PI", 1, "unknown name; did you mean pi?"},
      {"E", 1, "unknown name; did you mean e?"},
      {"arctan(1)", 1, "unknown name; did you mean atan?"},
      {"y", 1, "unknown name"},
      {"log2(8)", 1, "unknown name"},
      {"Coth(8)", 1, "unknown name"},
      {"[1, 2", 6, "expected ] after the ends of an interval"},
      {"[1 2]", 4, "expected a comma between the ends of an interval"},
      {"[1, pi]", 5, "expected a number"},
      {"3*[2, 1]", 3, "the lower end of an interval is above its upper end"},
      {"[1, 2/0.0]", 7, "zero denominator"},
      {".", 2, "expected a digit"},
      {"1e1000001", 3, "the exponent is beyond 1000000"},
      {"1.e-99999999999999999999", 5, "the exponent is beyond 1000000"},
      {"1 + \x80", 5, "expected an operand"},
  };
  for (auto const& [text, column, reason] : rows) try {
      (void)parse_expression(text);
      ADD_FAILURE() << text;
    } catch (convert::ParseError const& error) {
      EXPECT_EQ(error.column(), column) << text;
      EXPECT_EQ(error.reason(), reason) << text;
    }
}

/// Whatever the text, nothing recurs and nothing is quadratic in it.
TEST_F(Expressions, OfManyPartsAreFast) {
  auto const repeated = [](std::string const& first, std::string const& again, int times) {
    std::string text = first;
    while (times-- > 0) text += again;
    return text;
  };
  std::string const texts[] = {
      repeated("", "(", 1000000),      repeated("", "(", 500000) + repeated("1", ")", 500000),
      repeated("1", "+1", 200000),     repeated("", "-", 400000) + "1",
      repeated("2", "^2", 200000),     repeated("1", "^[1, 2]", 40000),
      repeated("", "sin(", 250000),    repeated("1e1000000", "+1e1000000", 100000),
      repeated("sin(1", ",1", 200000), repeated("", "f", 1000000),
      repeated("0.", "1", 1000000),
  };
  for (auto const& text : texts) {
    auto const start = std::chrono::steady_clock::now();
    try {
      (void)enclosure(text, 1);
    } catch (std::logic_error const&) {  // refused
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10))
        << text.substr(0, 20);
  }
}

}  // namespace
}  // namespace zelk::real
