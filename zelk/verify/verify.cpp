#include "zelk/verify/verify.h"

#include <gmp.h>

#include <algorithm>
#include <deque>

#include "zelk/numbers/functions.h"
#include "zelk/verify/internal/theorems.h"
#include "zelk/verify/internal/whole.h"

namespace zelk::verify {

namespace {

constexpr std::size_t most_claims = 1UL << 16;
constexpr double most_text = 1UL << 26;
constexpr double most_bytes = 1UL << 26;
constexpr double longest_rest = 200;  // of a line, without its statement or its numbers

std::string text_of(mpz_srcptr n) {
  std::string digits(mpz_sizeinbase(n, 10) + 2, '\0');
  mpz_get_str(digits.data(), 10, n);
  digits.resize(digits.find('\0'));
  return digits;
}

std::string text_of(QNumber const& q) {
  auto const numerator = q.numerator(), denominator = q.denominator();
  return q.is_integer() ? text_of(numerator.get())
                        : text_of(numerator.get()) + "/" + text_of(denominator.get());
}

std::string text_of(QNumber const& lower, QNumber const& upper) {
  if (!(lower == upper)) return "[" + text_of(lower) + ", " + text_of(upper) + "]";
  return lower.is_integer() && lower.sign() >= 0 ? text_of(lower) : "(" + text_of(lower) + ")";
}

/// At least as many as there are in a number so many bits long, with its sign and its slash.
double digits_in(double bits) { return std::floor(bits * 0.30103) + 4; }

double bits_of(QNumber const& q) { return static_cast<double>(above(q).bits() + below(q).bits()); }

/// What a claim is about.
std::string filled_in(Theorem const& theorem, Case const& claim) {
  if (theorem.text.empty()) return text_of(claim.lower, claim.upper);
  std::string text;
  auto premise = claim.premises.begin();
  for (char const c : theorem.text) {
    if (c == '#')
      text += (*premise++)->text;
    else
      text += c;
  }
  return text;
}

/// Whether the ends of a claim are as near to each other as was asked for.
bool is_narrow(Claim const& claim, unsigned long digits, bool is_relative) {
  auto const width = claim.upper - claim.lower;
  if (width.is_zero()) return true;
  auto const allowed = is_relative ? std::max({claim.lower, -claim.upper, QNumber(0)}) : 1;
  auto const times = allowed / width;
  // What is not that long is less than 2^digits.
  return digits <= static_cast<unsigned long>(above(times).bits()) &&
         !(times < pow(10, static_cast<long>(digits)));
}

class Checker {
 public:
  Checker(Limits const& limits, bool only_counts) : budget(limits, only_counts) {}

  void check(Claim const& claim) {
    auto const* const theorem = find_theorem(claim.theorem);
    need(theorem != nullptr, "an unknown theorem");
    need(claim.premises.size() == theorem->premises, "wrong number of premises");
    need(claim.arguments.size() == theorem->arguments, "wrong number of arguments");
    long bits = 0;
    for (auto const premise : claim.premises)
      need(premise >= 1 && premise <= known.size(), "a premise that does not stand before");
    for (auto const argument : claim.arguments) {
      need(argument >= 8 && argument <= most_bits, "an argument out of range");
      bits = static_cast<long>(argument);
    }
    Case one{{}, claim.lower, claim.upper, {bits, budget}, budget};
    double const size = bits_of(claim.lower) + bits_of(claim.upper);
    double longest = size, text = size + 64;
    for (auto const premise : claim.premises) {
      one.premises.push_back(&known[premise - 1]);
      longest = std::max(longest, one.premises.back()->bits);
      text += static_cast<double>(one.premises.back()->text.size());
    }
    need(text <= text_left, "too long a statement");
    budget.spend(64, longest, claim.premises.empty() ? 0 : 2);
    need(!(claim.upper < claim.lower), "ends in the wrong order");
    Known fact{filled_in(*theorem, one), claim.lower, claim.upper, size};
    need(theorem->follows(one), "does not follow");
    text_left -= static_cast<double>(fact.text.size());
    known.push_back(std::move(fact));
  }

  std::string const& last() const { return known.back().text; }

 private:
  Budget budget;
  double text_left = most_text;
  std::deque<Known> known;  // which premises point into
};

void need_room_for_reading(Certificate const& certificate, Limits const& limits) {
  double work = 0, length = static_cast<double>(certificate.statement.size()) + longest_rest;
  for (auto const& claim : certificate.claims) {
    length += longest_rest;
    for (auto const* end : {&claim.lower, &claim.upper}) {
      double const digits = digits_in(bits_of(*end));
      work += digits * digits;
      length += digits;
    }
  }
  need(length <= most_bytes, "longer than allowed");
  need(work <= limits.work, "too much work");
}

Verdict judge(Certificate const& certificate, Limits const& limits, Question const& asked,
              bool only_counts) {
  Verdict verdict;
  Checker checker(limits, only_counts);
  try {
    auto const& claims = certificate.claims;
    need(!claims.empty() && claims.size() <= most_claims, "wrong number of claims");
    for (auto const& claim : claims) {
      ++verdict.claim;
      checker.check(claim);
    }
    need(checker.last() == certificate.statement, "is not what the first line states");
    auto const& answer = claims.back();
    need(asked.statement.value_or(certificate.statement) == certificate.statement,
         "is not about what was asked");
    need(!asked.digits || is_narrow(answer, *asked.digits, asked.is_relative),
         "is wider than what was asked");
    if (only_counts)
      need_room_for_reading(certificate, limits);
    else
      verdict.statement = certificate.statement + " in [" + text_of(answer.lower) + ", " +
                          text_of(answer.upper) + "]";
    verdict.is_accepted = true;
  } catch (Rejected const& rejected) {
    verdict.reason = rejected.reason;
  }
  return verdict;
}

}  // namespace

Verdict verify(Certificate const& certificate, Limits const& limits, Question const& asked) {
  return judge(certificate, limits, asked, false);
}

Verdict verify_limits(Certificate const& certificate, Limits const& limits) {
  return judge(certificate, limits, {}, true);
}

}  // namespace zelk::verify
