#include "zelk/verify/read.h"

#include <algorithm>
#include <string>

#include "zelk/verify/internal/whole.h"

namespace zelk::verify {

namespace {

constexpr char misspelled[] = "a line that is not spelled as it should be";
constexpr std::string_view beginning = R"({"certificate":)";
constexpr std::size_t most_claims = 1UL << 16;
constexpr std::size_t most_bytes = 1UL << 26;

bool is_positive(std::string_view word) {
  return !word.empty() && word.front() != '0' &&
         std::ranges::all_of(word, [](char c) { return c >= '0' && c <= '9'; });
}

/// A line whose members are in order, without blanks, and strings or lists of strings.
class Line {
 public:
  explicit Line(std::string_view text) : rest(text) {}

  void expect(std::string_view text) {
    if (!rest.starts_with(text)) throw NoCertificate(misspelled);
    rest.remove_prefix(text.size());
  }

  /// Without escapes.
  std::string_view string() {
    expect("\"");
    auto const end = rest.find('"');
    if (end == std::string_view::npos) throw NoCertificate(misspelled);
    auto const word = rest.substr(0, end);
    if (!std::ranges::all_of(word, [](char c) { return c >= ' ' && c <= '~' && c != '\\'; }))
      throw NoCertificate(misspelled);
    rest.remove_prefix(end + 1);
    return word;
  }

  /// Of up to three counting numbers below 10^9.
  std::vector<std::size_t> list() {
    std::vector<std::size_t> numbers;
    expect("[");
    while (!rest.starts_with("]")) {
      if (!numbers.empty()) expect(",");
      auto const word = string();
      if (!is_positive(word) || word.size() > 9 || numbers.size() == 3)
        throw NoCertificate(misspelled);
      numbers.push_back(std::stoul(std::string(word)));
    }
    expect("]");
    return numbers;
  }

  void end() const {
    if (!rest.empty()) throw NoCertificate(misspelled);
  }

 private:
  std::string_view rest;
};

bool is_number(std::string_view word) {
  auto const slash = std::min(word.find('/'), word.size());
  auto const numerator = word.substr(0, slash);
  return (numerator == "0" || is_positive(numerator.substr(word.starts_with('-') ? 1 : 0))) &&
         (slash == word.size() || is_positive(word.substr(slash + 1)));
}

class Reader {
 public:
  explicit Reader(Limits const& limits) : work_left(limits.work) {}

  /// Requires: it is spelled as a number.
  QNumber number(std::string_view word) {
    auto const slash = std::min(word.find('/'), word.size());
    work_left -= static_cast<double>(word.size()) * static_cast<double>(word.size());
    if (work_left < 0) throw NoCertificate("too much work");
    Whole const numerator(std::string(word.substr(0, slash)));
    Whole const denominator(slash == word.size() ? "1" : std::string(word.substr(slash + 1)));
    if (word.substr(slash) == "/1" || gcd(numerator, denominator) != 1)
      throw NoCertificate("a number that is not in lowest terms");
    return QNumber::from_lowest_terms({numerator.get(), denominator.get()});
  }

  Claim claim(std::string_view text) {
    Claim claim;
    Line line(text);
    line.expect(R"({"theorem":)");
    claim.theorem = line.string();
    line.expect(R"(,"arguments":)");
    claim.arguments = line.list();
    line.expect(R"(,"premises":)");
    claim.premises = line.list();
    line.expect(R"(,"lower":)");
    auto const lower = line.string();
    line.expect(R"(,"upper":)");
    auto const upper = line.string();
    line.expect("}");
    line.end();
    if (!is_number(lower) || !is_number(upper)) throw NoCertificate(misspelled);
    claim.lower = number(lower);
    claim.upper = number(upper);
    return claim;
  }

 private:
  double work_left;
};

std::string_view take_line(std::string_view& text) {
  auto const end = std::min(text.find('\n'), text.size());
  auto const line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

}  // namespace

std::string_view next_certificate(std::string_view& text) {
  auto rest = text;
  do take_line(rest);
  while (!rest.empty() && !rest.starts_with(beginning));
  auto const first = text.substr(0, text.size() - rest.size());
  text = rest;
  return first;
}

Certificate read_certificate(std::string_view lines, Limits const& limits) {
  if (lines.size() > most_bytes) throw NoCertificate("longer than allowed");
  Certificate certificate;
  Line first(take_line(lines));
  first.expect(R"({"certificate":)");
  auto const version = first.string();
  first.expect(R"(,"claims":)");
  auto const count = first.string();
  first.expect(R"(,"statement":)");
  certificate.statement = first.string();
  first.expect("}");
  first.end();
  if (version != "1") throw NoCertificate("an unknown version");
  auto const present = static_cast<std::size_t>(std::ranges::count(lines, '\n')) +
                       (!lines.empty() && lines.back() != '\n' ? 1 : 0);
  if (count != std::to_string(present) || present == 0 || present > most_claims)
    throw NoCertificate("wrong number of claims");
  for (Reader reader(limits); !lines.empty();)
    certificate.claims.push_back(reader.claim(take_line(lines)));
  return certificate;
}

}  // namespace zelk::verify
