#include "zelk/approx/rational_approximator.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <utility>

#include "tests/support/text_form.h"
#include "zelk/approx/convergents.h"

namespace zelk::na {
namespace {

using test::entries;
using test::number;
using test::show;

constexpr int cf = 2;  // in place of a direction: get_cf instead of approx

TEST(RationalApproximator, AnswersAndRemembers) {
  struct {
    char const* q;  // null: a new approximator from here on
    unsigned prec;
    int dir;
    char const* result;
    std::set<std::string> gained;  // by both caches
  } const table[] = {
      {"415/93", 5, cf, "415/93 [4 2 6 7 ; 0]", {"415/93 415/93 [4 2 6 7 ; 0]"}},
      {},
      {"415/93", 2, cf, "415/93 [4 2 ; 43/7]", {"415/93 415/93 [4 2 ; 43/7]"}},
      {"415/93", 4, cf, "415/93 [4 2 6 7 ; 0]", {}},
      // The stored terms stay small; what is split off after them comes from a big remainder.
      {"415/93B", 3, cf, "415/93B [4 2 6B ; 7B]", {}},
      {"415/93B", 0, cf, "415/93B [4 2 ; 43/7B]", {}},
      {},
      {"415/93B", 2, cf, "415/93B [4B 2B ; 43/7B]", {"415/93B 415/93B [4B 2B ; 43/7B]"}},
      {"415/93", 4, cf, "415/93B [4B 2B 6B 7B ; 0B]", {}},
      {},
      {"3/7", 0, cf, "3/7 [; 3/7]", {"3/7 3/7 [; 3/7]"}},
      {"3/7", 9, cf, "3/7 [0 2 3 ; 0]", {}},
      {"-7/2", 9, cf, "-7/2 [-3 -2 ; 0]", {"-7/2 -7/2 [-3 -2 ; 0]"}},
      {"-7/2B", 9, cf, "-7/2B [-3 -2 ; 0B]", {}},
      {"-9/2B", 9, cf, "-9/2B [-5B 2B ; 0B]", {"-9/2B -9/2B [-5B 2B ; 0B]"}},
      {"5", 3, cf, "5 [5 ; 0]", {"5 5 [5 ; 0]"}},
      {"-5B", 3, cf, "-5B [-5B ; 0B]", {"-5B -5B [-5B ; 0B]"}},
      {"0", 3, cf, "0 [; 0]", {"0 0 [; 0]"}},
      {"0B", 3, cf, "0B [; 0B]", {}},
      // Beyond 32 bits a number hashes differently in its two forms, and each gets an entry.
      {"2147483648", 0, cf, "2147483648 [; 2147483648]", {"2147483648 2147483648 [; 2147483648]"}},
      {"2147483648B",
       0,
       cf,
       "2147483648B [; 2147483648B]",
       {"2147483648B 2147483648B [; 2147483648B]"}},
      {},
      // Begun in small form, rounded toward zero; gone on with in big form, rounded down.
      {"-415/93", 1, 0, "-4", {"-415/93 1 -4", "-415/93 -415/93 [-4 ; -93/43]"}},
      {"-415/93B", 4, cf, "-415/93B [-4 -3B 1B 5B ; 7B]", {}},
      {"-415/93B", 2, 0, "-13/3B", {"-415/93B 2 -13/3B"}},
      {"-415/93", 3, 0, "-58/13", {"-415/93 3 -58/13"}},
      {},
      {"415/93", 1, 0, "4", {"415/93 1 4", "415/93 415/93 [4 ; 93/43]"}},
      {"415/93", 2, 0, "9/2", {"415/93 2 9/2"}},
      {"415/93", 3, 0, "58/13", {"415/93 3 58/13"}},
      {"415/93", 5, 0, "415/93", {"415/93 5 415/93"}},
      {"415/93B", 2, 0, "9/2", {}},
      {"415/93", 3, 1, "415/93", {"415/93 4 415/93"}},
      {"415/93B", 6, 0, "415/93B", {"415/93B 6 415/93B"}},
      {},
      {"415/93", 1, 1, "9/2", {"415/93 1 4", "415/93 2 9/2", "415/93 415/93 [4 ; 93/43]"}},
      {"415/93", 1, -1, "4", {}},
      {"415/93", 2, -1, "58/13", {"415/93 3 58/13"}},
      {"-7/2", 1, 1, "-3", {"-7/2 1 -3", "-7/2 -7/2 [-3 ; -2]"}},
      {"-7/2", 1, -1, "-7/2", {"-7/2 2 -7/2"}},
      {},
      {"-7/2B", 1, -1, "-4B", {"-7/2B 1 -4B", "-7/2B -7/2B [-4B ; 2B]"}},
      {"-7/2", 1, 1, "-7/2B", {"-7/2 2 -7/2B"}},
      {"5", 1, 1, "5", {}},
      {"-5B", 0, -1, "-5B", {}},
      {"9223372036854775808B", 1, 0, "9223372036854775808B", {}},
  };
  std::optional<RationalApproximator> approximator(std::in_place);
  std::set<std::string> known;
  for (auto const& [q, prec, dir, result, gained] : table) {
    if (q == nullptr) {
      approximator.emplace();
      known.clear();
      continue;
    }
    SCOPED_TRACE(std::string(q) + " at " + std::to_string(prec));
    EXPECT_EQ(dir == cf ? show(approximator->get_cf(number(q), prec))
                        : show(approximator->approx(number(q), prec, dir)),
              result);
    known.insert(gained.begin(), gained.end());
    auto found = entries(approximator->approximations());
    found.merge(entries(approximator->expansions()));
    EXPECT_EQ(found, known);
  }
}

TEST(RationalApproximator, KeepsTheDigitsOfAWideNumberOnce) {
  QNumber const wide = number("27670116110564327421/36893488147419103232");
  QNumber copy;
  {
    RationalApproximator approximator;
    approximator.do_approx(wide, 7);
    approximator.approx(wide, 1, 1);
    auto const digits = [](QNumber const& q) { return mpz_limbs_read(q.denominator()); };
    auto const* const kept = approximator.expansions().find(wide).node;
    for (unsigned prec : {1U, 2U, 7U}) {
      auto const* const node = approximator.approximations().find({wide, prec}).node;
      EXPECT_EQ(digits(node->value.first.first), digits(kept->value.first));
      copy = node->value.first.first;
    }
  }
  EXPECT_EQ(copy, wide);
}

TEST(Convergents, AreSmallWhereTheyFitAndHavePositiveDenominators) {
  for (auto const& [terms, expected] : {
           std::pair("4 2 6 7", "4 9/2 58/13 415/93"),
           std::pair("-4 -2 -6 -7", "-4 -9/2 -58/13 -415/93"),
           std::pair("-4B -3B 1B 5B 7B", "-4 -13/3 -9/2 -58/13 -415/93"),
           std::pair("0 9223372036854775807 1 1",
                     "0 1/9223372036854775807 1/9223372036854775808B "
                     "2/18446744073709551615B"),
       }) {
    std::string all;
    for (QNumber const& c : convergents(test::numbers(terms)))
      all += (all.empty() ? "" : " ") + show(c);
    EXPECT_EQ(all, expected);
  }
}

}  // namespace
}  // namespace zelk::na
