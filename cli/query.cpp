#include "cli/query.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "cli/functions.h"
#include "zelk/convert/text.h"
#include "zelk/real/parse.h"

namespace zelk::cli {
namespace {

[[noreturn]] void refuse(Word const& word, std::string const& reason) {
  throw Refusal(Refusal::Kind::malformed, word.column, reason,
                convert::quoted(word.text) + ": " + reason);
}

bool is_blank(char c) { return c == ' ' || c == '\t'; }
bool is_digit(char c) { return '0' <= c && c <= '9'; }
bool is_quote(char c) { return c == '"' || c == '\''; }

/// Where the first character from `from` on is that is none of these, or the end.
std::size_t skip(bool these(char), std::string_view text, std::size_t from = 0) {
  while (from < text.size() && these(text[from])) ++from;
  return from;
}

/// Takes the words of a line one after the other.
class Words {
 public:
  explicit Words(std::string_view text) : line(text) {}

  std::optional<Word> next() {
    auto const begin = skip(is_blank, line, position);
    if (begin == line.size()) return std::nullopt;
    if (is_quote(line[begin])) {
      auto const end = line.find(line[begin], begin + 1);
      if (end == std::string_view::npos) refuse({line.substr(begin), begin + 1}, "an open quote");
      position = end + 1;
      if (position < line.size() && !is_blank(line[position]))
        refuse({line.substr(position), position + 1}, "expected a blank after the quote");
      return Word{line.substr(begin + 1, end - begin - 1), begin + 2};
    }
    position = skip([](char c) { return !is_blank(c); }, line, begin);
    return Word{line.substr(begin, position - begin), begin + 1};
  }

  /// Where a missing word would stand.
  Word end() const { return {{}, line.size() + 1}; }

 private:
  std::string_view line;
  std::size_t position = 0;
};

Function const& function_of(Word const& name) {
  if (auto const* const function = find_function(name.text)) return *function;
  std::string known;
  for (auto const& function : all_functions()) known += (known.empty() ? "" : ", ") + function.name;
  refuse(name, "not a function; there are " + known);
}

/// Of `--terms 5` and `--terms=5` the word 5.
Word value_of(Word const& option, std::string const& name, Words& words) {
  if (option.text.size() > name.size())
    return {option.text.substr(name.size() + 1), option.column + name.size() + 1};
  if (auto const value = words.next()) return *value;
  refuse(words.end(), name + " needs a value");
}

void read_option(Word const& option, Words& words, Query& query) {
  auto const& arguments = query.function->arguments;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    std::string const& name = arguments[i].name;
    if (!arguments[i].is_option()) continue;
    if (option.text != name && !option.text.starts_with(name + '=')) continue;
    if (query.words[i]) refuse(option, "given twice");
    query.words[i] = value_of(option, name, words);
    return;
  }
  auto const& flags = query.function->flags;
  auto const flag = std::ranges::find(flags, option.text, &Flag::name);
  if (flag == flags.end()) refuse(option, "not an option of " + query.function->name);
  int& field = query.*(flag->field);
  if (field != 0 && field != flag->value) {
    std::string names;
    for (Flag const& each : flags)
      if (each.field == flag->field) names += (names.empty() ? "" : " excludes ") + each.name;
    refuse(option, names);
  }
  field = flag->value;
}

void read_argument(Word const& word, Query& query) {
  auto const& arguments = query.function->arguments;
  for (std::size_t i = 0; i < arguments.size(); ++i)
    if (!arguments[i].is_option() && !query.words[i]) {
      query.words[i] = word;
      return;
    }
  refuse(word, "unexpected argument");
}

/// Whether a text has what only an expression has: a name, a parenthesis or bracket, or an operator
/// other than the slash and the signs of a number. All else is read as a number.
bool is_expression(std::string_view text) {
  constexpr std::string_view digits = "0123456789.";
  constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  char before = '\0';  // the last character that is no blank
  for (char const c : text) {
    if (c == ' ' || c == '\t') continue;
    bool const follows_digit = digits.find(before) != std::string_view::npos;
    if (std::string_view("()[]*^").find(c) != std::string_view::npos) return true;
    if ((c == '+' || c == '-') && follows_digit) return true;
    if (letters.find(c) != std::string_view::npos && !follows_digit) return true;
    before = c;
  }
  return false;
}

/// A number, or an expression.
void read_value(Word const& word, Query& query) {
  if (is_expression(word.text))
    query.expressions.push_back(parse_expression(word));
  else
    query.numbers.push_back(parse_number(word));
}

}  // namespace

std::string_view without_comment(std::string_view line) {
  for (std::size_t at = 0;;) {
    at = skip(is_blank, line, at);
    if (at == line.size() || line[at] == '#') return line.substr(0, at);
    // A quote lasts until the next, and elsewhere a word ends where the comment begins.
    if (is_quote(line[at])) {
      at = line.find(line[at], at + 1);
      if (at++ == std::string_view::npos) return line;
    } else {
      at = skip([](char c) { return !is_blank(c) && c != '#'; }, line, at);
    }
  }
}

Query parse_query(std::string_view line) {
  Words words(line);
  auto const name = words.next();
  if (!name) refuse(words.end(), "a function is missing");
  Query query{&function_of(*name)};
  auto const& arguments = query.function->arguments;
  query.words.resize(arguments.size());
  bool options = true;
  while (auto const word = words.next()) {
    if (options && word->text == "--")
      options = false;
    else if (options && word->text.starts_with("--"))
      read_option(*word, words, query);
    else
      read_argument(*word, query);
  }
  for (std::size_t i = 0; i < arguments.size(); ++i)
    if (!arguments[i].is_option() && !query.words[i])
      refuse(words.end(), arguments[i].name + " is missing");
  parse_words(query);
  return query;
}

void parse_words(Query& query) {
  for (std::size_t i = 0; i < query.words.size(); ++i) {
    if (!query.words[i]) continue;
    auto const& argument = query.function->arguments[i];
    auto const& word = *query.words[i];
    switch (argument.kind) {
      case Argument::Kind::number:
        query.numbers.push_back(parse_number(word));
        break;
      case Argument::Kind::value:
        read_value(word, query);
        break;
      case Argument::Kind::expression:
        query.expressions.push_back(parse_expression(word));
        break;
      case Argument::Kind::limit: {
        QNumber const limit = parse_number(word);
        if (!limit.is_integer() || limit.sign() <= 0)
          refuse(word, "expected a whole number from 1 on for " + argument.name);
        query.numbers.push_back(limit);
        break;
      }
      case Argument::Kind::digits:
        query.digits = parse_count(word, argument.name);
        break;
      case Argument::Kind::terms:
        query.terms = parse_count(word, argument.name);
        if (query.terms == 0 && argument.is_option()) {
          std::string const reason = "at least one term must be asked for";
          throw Refusal(Refusal::Kind::malformed, word.column, reason,
                        argument.name + ' ' + std::string(word.text) + ": " + reason);
        }
        break;
    }
  }
}

QNumber parse_number(Word const& word) {
  // The text is brought into the form that the library reads, and columns back.
  auto first = skip(is_blank, word.text);
  std::string text(word.text.substr(first));
  while (!text.empty() && is_blank(text.back())) text.pop_back();
  auto const has_digit = [&](std::size_t at) { return at < text.size() && is_digit(text[at]); };
  if (text.starts_with('+') && (has_digit(1) || text.starts_with("+."))) {
    text.erase(0, 1);
    ++first;
  }
  auto const start = static_cast<std::size_t>(text.starts_with('-'));
  auto const point = skip(is_digit, text, start);
  auto inserted = text.size();  // where a zero was
  if (point < text.size() && text[point] == '.' && has_digit(point + 1) != (point > start)) {
    inserted = point > start ? point + 1 : point;
    text.insert(inserted, 1, '0');
  }
  try {
    return convert::parse_rational(text);
  } catch (convert::ParseError const& error) {
    auto const column =
        first + error.column() - static_cast<std::size_t>(error.column() > inserted + 1);
    std::string const reason(error.reason());
    throw Refusal(Refusal::Kind::malformed, word.column + column - 1, reason,
                  convert::ParseError(word.text, column, reason).what());
  }
}

real::Expression parse_expression(Word const& word) {
  try {
    return real::parse_expression(word.text);
  } catch (convert::ParseError const& error) {
    throw Refusal(Refusal::Kind::malformed, word.column + error.column() - 1,
                  std::string(error.reason()), error.what());
  }
}

unsigned long parse_whole(Word const& word, unsigned long most, std::string const& name) {
  auto const text = word.text;
  unsigned long value = 0;
  auto const* const end = text.data() + text.size();
  auto const [rest, error] = std::from_chars(text.data(), end, value);
  bool const whole = rest == end && error != std::errc::invalid_argument;
  if (whole && error == std::errc{} && value <= most) return value;
  std::string reason = "expected a whole number" + (name.empty() ? "" : " for " + name);
  if (text.starts_with('-')) reason = "a count cannot be negative";
  if (whole) reason = "a count is at most " + std::to_string(most);
  refuse(word, reason);
}

unsigned parse_count(Word const& word, std::string const& name) {
  return static_cast<unsigned>(parse_whole(word, UINT_MAX, name));
}

}  // namespace zelk::cli
