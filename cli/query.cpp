#include "cli/query.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

#include "zelk/convert/text.h"

namespace zelk::cli {
namespace {

constexpr Signature all[] = {
    {Function::cf, "cf", "Q", "", true, false, false},
    {Function::approx, "approx", "Q", "TERMS", false, true, false},
    {Function::convergents, "convergents", "Q", "", true, false, false},
    {Function::exp, "exp", "X", "DIGITS", false, false, true},
    {Function::sin, "sin", "X", "DIGITS", false, false, true},
    {Function::cos, "cos", "X", "DIGITS", false, false, true},
    {Function::pi, "pi", "", "DIGITS", false, false, false},
};

constexpr unsigned largest_count = std::numeric_limits<unsigned>::max();

[[noreturn]] void refuse(Word const& word, std::string const& reason) {
  throw Refusal(Refusal::Kind::malformed, word.column, reason,
                convert::quoted(word.text) + ": " + reason);
}

/// Takes the words of a line one after the other.
class Words {
 public:
  explicit Words(std::string_view text) : line(text) {}

  std::optional<Word> next() {
    auto const begin = line.find_first_not_of(blanks, position);
    if (begin == std::string_view::npos) return std::nullopt;
    position = std::min(line.find_first_of(blanks, begin), line.size());
    return Word{line.substr(begin, position - begin), begin + 1};
  }

  /// Where a missing word would stand.
  Word end() const { return {{}, line.size() + 1}; }

 private:
  static constexpr std::string_view blanks = " \t";

  std::string_view line;
  std::size_t position = 0;
};

Signature const& find_signature(Word const& name) {
  auto const* const found = std::ranges::find(all, name.text, &Signature::name);
  if (found != std::end(all)) return *found;
  std::string known;
  for (auto const& signature : all)
    known += (known.empty() ? "" : ", ") + std::string(signature.name);
  refuse(name, "not a function; there are " + known);
}

/// `--terms 5` and `--terms=5`.
Word value_of(Word const& option, std::string_view name, Words& words) {
  if (option.text.size() > name.size())
    return {option.text.substr(name.size() + 1), option.column + name.size() + 1};
  if (auto const value = words.next()) return *value;
  refuse(words.end(), std::string(name) + " needs a value");
}

void read_option(Word const& option, Signature const& signature, Words& words, QueryText& query) {
  bool const is_terms = option.text == "--terms" || option.text.starts_with("--terms=");
  if (signature.takes_terms && is_terms && query.terms) refuse(option, "given twice");
  if (signature.takes_terms && is_terms)
    query.terms = value_of(option, "--terms", words);
  else if (signature.takes_side && option.text == "--lower")
    query.lower = true;
  else if (signature.takes_side && option.text == "--upper")
    query.upper = true;
  else if (signature.takes_derivative && option.text == "--derivative")
    query.derivative = true;
  else
    refuse(option, "not an option of " + std::string(signature.name));
  if (query.lower && query.upper) refuse(option, "--lower excludes --upper");
}

}  // namespace

Signature const& signature_of(Function function) {
  return *std::ranges::find(all, function, &Signature::function);
}

QueryText split_query(std::string_view line) {
  Words words(line);
  auto const name = words.next();
  if (!name) refuse(words.end(), "a function is missing");
  Signature const& signature = find_signature(*name);
  QueryText query{signature.function, {}, {}, {}};
  bool options = true;
  while (auto const word = words.next()) {
    if (options && word->text == "--")
      options = false;
    else if (options && word->text.starts_with("--"))
      read_option(*word, signature, words, query);
    else if (!signature.number.empty() && !query.number)
      query.number = word;
    else if (!signature.count.empty() && !query.count)
      query.count = word;
    else
      refuse(*word, "unexpected argument");
  }
  for (auto const& [argument, given] :
       {std::pair(signature.number, query.number), std::pair(signature.count, query.count)})
    if (!argument.empty() && !given) refuse(words.end(), std::string(argument) + " is missing");
  return query;
}

Query parse_query(QueryText const& text) {
  Query query{text.function, {}, largest_count, text.upper - text.lower, text.derivative};
  if (text.number) query.number = parse_number(*text.number);
  if (text.count) query.count = parse_count(*text.count);
  if (text.terms) {
    query.count = parse_count(*text.terms);
    if (query.count == 0)
      throw Refusal(
          Refusal::Kind::malformed, text.terms->column, "at least one term must be asked for",
          "--terms " + std::string(text.terms->text) + ": at least one term must be asked for");
  }
  if (query.function == Function::approx && query.count == 0 && !query.number.is_integer())
    throw Refusal(Refusal::Kind::unanswerable, text.count->column, "no terms leave no convergent",
                  "approx " + std::string(text.number->text) + ' ' + std::string(text.count->text) +
                      ": no terms leave no convergent");
  return query;
}

QNumber parse_number(Word const& word) {
  try {
    return convert::parse_rational(word.text);
  } catch (convert::ParseError const& error) {
    throw Refusal(Refusal::Kind::malformed, word.column + error.column() - 1,
                  std::string(error.reason()), error.what());
  }
}

unsigned long parse_whole(Word const& word, unsigned long most) {
  auto const text = word.text;
  unsigned long value = 0;
  auto const* const end = text.data() + text.size();
  auto const [rest, error] = std::from_chars(text.data(), end, value);
  bool const whole = rest == end && error != std::errc::invalid_argument;
  if (whole && error == std::errc{} && value <= most) return value;
  std::string reason = "expected a whole number";
  if (text.starts_with('-')) reason = "a count cannot be negative";
  if (whole) reason = "a count is at most " + std::to_string(most);
  refuse(word, reason);
}

unsigned parse_count(Word const& word) {
  return static_cast<unsigned>(parse_whole(word, largest_count));
}

}  // namespace zelk::cli
