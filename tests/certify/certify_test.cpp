#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/certify/judge.h"
#include "tests/support/random_number.h"
#include "zelk/approx/cosine.h"
#include "zelk/approx/short_bounds.h"
#include "zelk/certify/internal/arity.h"
#include "zelk/certify/prove.h"
#include "zelk/certify/write.h"
#include "zelk/numbers/functions.h"
#include "zelk/real/parse.h"

namespace zelk::certify {

namespace {

using real::Accuracy;
using real::Interval;
using real::Kind;
using test::judge_by_both;
using verify::Certificate;

/// Random questions of every kind, with powers of up to thousands, tiny numbers, and intervals.
class Questions {
 public:
  explicit Questions(unsigned seed) : next(test::random_bytes(seed)) {}

  /// Nothing where the function is not defined, or too long.
  std::optional<Proof> ask(unsigned kind) {
    using Prove = Proof (*)(Functions&, Interval const&, Accuracy);
    static constexpr std::pair<Prove, long> table[] = {
        {prove_exp, 60},  {prove_log, 999}, {prove_sin, 20}, {prove_cos, 20},
        {prove_tan, 3},   {prove_asin, 1},  {prove_acos, 1}, {prove_atan, 99},
        {prove_sinh, 60}, {prove_cosh, 60}, {prove_tanh, 60}};
    auto const accuracy = next() % 2 != 0 ? Accuracy(next() % 40) : Accuracy::relative(next() % 40);
    try {
      if (kind < 11) return table[kind].first(functions, interval(table[kind].second), accuracy);
      if (kind == 11) return prove_root(functions, interval(99), 1 + next() % 6, accuracy);
      if (kind == 12) return prove_pow(functions, interval(9), number(5), accuracy);
      if (kind == 13) return prove_pi(functions, accuracy);
      return prove(functions, expression(kind - 13), accuracy, 300);
    } catch (std::logic_error const&) {
      return {};
    }
  }

 private:
  QNumber number(long most) {
    long const d = 1 + next() % (next() % 2 != 0 ? 4 : 200);
    return {static_cast<long>(next() * 256 + next()) % (2 * most * d + 1) - most * d, d};
  }
  Interval interval(long most) {
    auto const a = number(most), b = next() % 3 != 0 ? a : number(most);
    return a < b ? Interval(a, b) : Interval(b, a);
  }
  real::Expression expression(unsigned depth) {
    using real::Expression;
    Expression const leaves[] = {
        Expression::pi() * number(9), interval(3) * zelk::pow(10, -static_cast<long>(next())),
        real::pow(interval(2), static_cast<long>(next() * 16) - 99), interval(9)};
    if (depth == 0) return leaves[next() % 4];
    auto const kind = static_cast<Kind>(4 + next() % 19);  // from negative to tanh
    return arity_of(kind) == 1 ? Expression::combined(kind, expression(depth - 1))
                               : Expression::combined(kind, expression(depth - 1), expression(0));
  }

  decltype(test::random_bytes(0)) next;
  real::ElementaryFunctions functions{1e5};
};

TEST(Certificates, OfRandomAnswersAreAccepted) {
  Questions questions(1);
  std::string text;
  std::size_t count = 0;
  for (unsigned i = 0; i < 2000; ++i)
    if (auto const proof = questions.ask(i % 20)) {
      auto const& last = proof->certificate.claims.back();
      ASSERT_TRUE(Interval(last.lower, last.upper) == proof->answer.bounds);
      text += to_json_lines(proof->certificate);
      ++count;
    }
  EXPECT_GT(count, 1000U);
  na::RationalApproximator rational;
  na::PowerSeriesApproximator series(rational);
  for (long n = -60; n <= 60; n += 3)
    for (unsigned const digits : {0U, 1U, 9U, 30U}) {
      QNumber const x(n * std::abs(n), n % 2 != 0 ? 59 : 59000000000000);
      auto const add = [&](auto certify, auto const& bounds) {
        text += to_json_lines(certify(series, x, digits, Interval(bounds.first, bounds.second)));
        ++count;
      };
      add(certify_exp, series.maclaurin_exp_bounds(x, digits));
      add(certify_sin, series.maclaurin_sin_bounds(x, digits));
      add(certify_cos, na::cosine_bounds(series, x, digits));
      add(certify_cos, na::short_cos_bounds(series, x, digits));
      auto const exp = series.maclaurin_exp_der_bounds(x, digits);
      add(certify_exp, n < 0 ? std::pair(exp.second, exp.first) : exp);
      auto const sin = series.maclaurin_sin_bounds(x, digits);
      add(certify_negative_sin, std::pair(-sin.second, -sin.first));
    }
  EXPECT_THROW((void)certify_cos(series, 1, 9, Interval(2, 3)), std::invalid_argument);
  for (unsigned digits = 0; digits < 100; ++digits)
    for (auto const& bounds : {series.machin_pi_bounds(digits), na::short_pi_bounds(digits)}) {
      text += to_json_lines(certify_pi(Interval(bounds.first, bounds.second)));
      ++count;
    }
  auto const verdicts = judge_by_both({text});
  EXPECT_EQ(verdicts.size(), count);
  for (auto const& verdict : verdicts) EXPECT_TRUE(verdict.starts_with("accepted: ")) << verdict;
}

/// Values whose signs, or whose exactness, hang on the last bit.
TEST(Certificates, OfCornersAreAccepted) {
  std::string text;
  real::ElementaryFunctions functions;
  for (char const* const expression :
       {"sin(1e-30)",    "atan(-1e-20)",      "cos(1e-30)",           "tan(355/226)",
        "tanh(1000000)", "exp(-99)",          "exp(-1000)",           "acos(1e-70 - 1)",
        "acos(-1)",      "asin(1)",           "log(1 + 1e-40)",       "log(1)",
        "sin(355)",      "cos(11)",           "sin(10^50)",           "pi^100",
        "2^1000.5",      "(4/9)^-1.5",        "root(-27/8, 3)",       "[-2, 1]^2",
        "[4, 9]^0.5",    "[9, 10]^[0.5, 99]", "cosh([-1, 2])",        "sin([-0.1, 8])",
        "cos([0, 4])",   "sin([0, 1])",       "e^pi - pi^e",          "-[1, 2]/[-3, -1]",
        "atan(10^300)",  "root(2, 1000000)",  "1.000000001^-3000001", "sin([3, 7])",
        "sin([4, 9])",   "tan([2, 4])",       "asin(1 - 1e-90)",      "log(1e-400)",
        "exp(-10^10)",   "cos([-3, 3])",      "acos([-1, 1])",        "2^5000",
        "1.0001^10000",  "[1, 2]^5000",       "sqrt(10^3000)",        "tan([-1.57, 1.57])",
        "cos(e^-319)",   "sin(420.4^300)",    "cosh(e^-99)",          "1e-20000",
        "1^(10^9)",      "(1+1e-30)^1e31",    "sin(pi/2 + e^-99)",    "cos(2^.5*1e-30)",
        "[1/3, 0.33334]"})
    for (auto const accuracy : {Accuracy(0), Accuracy(3), Accuracy(30), Accuracy::relative(9)})
      text +=
          to_json_lines(prove(functions, real::parse_expression(expression), accuracy).certificate);
  text += to_json_lines(prove_tan(functions, functions.pi(99).lower() / 2, 3).certificate);
  text += to_json_lines(prove_pow(functions, 10, QNumber(10000019, 100003), 3).certificate);
  for (auto const& verdict : judge_by_both({text})) EXPECT_TRUE(verdict.starts_with("accepted: "));
}

/// What would be too much is foreseen as it is counted, and refused before it is made.
TEST(Certificates, BeyondTheLimitsAreRefused) {
  real::ElementaryFunctions functions;
  auto const least_work = [](Certificate const& certificate, bool is_foreseen) {
    verify::Limits limits;
    for (double bit = limits.work / 2; bit >= 1; bit /= 2) {
      verify::Limits const less{limits.work - bit};
      if ((is_foreseen ? verify::verify_limits(certificate, less)
                       : verify::verify(certificate, less))
              .is_accepted)
        limits = less;
    }
    return limits.work;
  };
  for (char const* const expression : {"exp(-[7/3, 60])", "cos([0, 4])/sin(9)", "tan([-1.5, 1.57])",
                                       "acos(-[0.5, 1])", "2^0.5^99", "pi - 7^(1/10000000019)"}) {
    auto const proof = prove(functions, real::parse_expression(expression), 9).certificate;
    EXPECT_EQ(least_work(proof, true), least_work(proof, false)) << expression;
  }
  std::string ones = "1";
  for (unsigned i = 1; i < 9999; ++i) ones += "+1";
  std::pair<std::string, char const*> const table[] = {
      {"1e-300000 + 1", "that checkers accept: claim 3: too much work"},
      {"1e-780000", "that checkers accept: claim 1: too much work"},
      {"0^(10^9)", "of so great a power of what is not positive"},
      {ones, "that checkers accept: claim 9459: too long a statement"},
  };
  EXPECT_THROW((void)prove_pow(functions, -1, 999999999, 3), Unprovable);
  for (auto const& [expression, reason] : table) try {
      ADD_FAILURE()
          << prove(functions, real::parse_expression(expression), 3).certificate.statement;
    } catch (Unprovable const& unprovable) {
      EXPECT_EQ(unprovable.what(), std::string("no certificate ") + reason);
    }
}

/// Every way to change one thing.
std::vector<Certificate> tampered(Certificate const& good) {
  std::vector<Certificate> all;
  auto const change = [&](auto const& how) { how(all.emplace_back(good)); };
  for (std::size_t i = 0; i < good.claims.size(); ++i) {
    auto const alter = [&](auto const& part_of, QNumber const& q) {
      for (long const unit : {-1, 1}) {
        auto const replace = [&](QNumber const& by) {
          change([&](Certificate& c) { part_of(c.claims[i]) = by; });
        };
        replace(QNumber::from_mpz((numerator(q) + unit).numerator(), q.denominator()));
        if (!(denominator(q) + unit == 0)) replace(numerator(q) / (denominator(q) + unit));
      }
    };
    auto const& claim = good.claims[i];
    alter(
        [](auto& c) -> auto& { return c.lower; }, claim.lower);
    alter(
        [](auto& c) -> auto& { return c.upper; }, claim.upper);
    for (auto const argument : claim.arguments)
      for (std::size_t const by : {argument - 1, argument + 1, argument / 2, argument / 4})
        change([&](Certificate& c) { c.claims[i].arguments[0] = by; });
    for (std::size_t j = 0; j < claim.premises.size(); ++j)
      for (std::size_t to = 1; to <= good.claims.size() + 1; ++to)
        if (to != claim.premises[j]) change([&](Certificate& c) { c.claims[i].premises[j] = to; });
    auto const at = static_cast<std::ptrdiff_t>(i);
    change([&](Certificate& c) { c.claims.erase(c.claims.begin() + at); });
    change([&](Certificate& c) { c.claims.insert(c.claims.begin() + at, claim); });
    for (std::size_t j = i + 1; j < good.claims.size(); ++j)
      change([&](Certificate& c) { std::swap(c.claims[i], c.claims[j]); });
    for (auto const* const name :
         {"exp_taylor", "sum", "sin_taylor", "log_by_exp", "power", "number", "Sum"})
      if (claim.theorem != name) change([&](Certificate& c) { c.claims[i].theorem = name; });
  }
  return all;
}

TEST(Certificates, TamperedWithAreRejectedUnlessTrue) {
  real::ElementaryFunctions functions;
  std::string lines;
  std::vector<std::pair<Certificate, Interval>> all;  // with the truth
  for (char const* const text :
       {"exp(1/3)", "log(7)", "sqrt(2)", "sin(9)", "cos(1/2)", "tan(-5/3)", "atan(3)", "asin(-1/3)",
        "acos(2/3)", "sinh(1/2)", "cosh(1/2)", "tanh(2)", "2^(2/3)", "pi", "pi^e - 3/7",
        "sin([1, 2])/4", "-log([2, 3])*pi"}) {
    auto const expression = real::parse_expression(text);
    auto const truth = real::enclose(functions, expression, 30).bounds;
    for (auto& bad : tampered(prove(functions, expression, 6).certificate)) {
      lines += to_json_lines(bad);
      all.emplace_back(std::move(bad), truth);
    }
  }
  auto const verdicts = judge_by_both({lines});
  ASSERT_EQ(verdicts.size(), all.size());
  std::size_t accepted = 0;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (!verdicts[i].starts_with("accepted")) continue;
    ++accepted;
    auto const& [bad, truth] = all[i];
    auto const& last = bad.claims.back();
    EXPECT_TRUE(Interval(last.lower, last.upper).contains(truth)) << to_json_lines(bad);
  }
  EXPECT_GT(accepted, 0U);
  EXPECT_LT(2 * accepted, all.size());
}

}  // namespace

}  // namespace zelk::certify
