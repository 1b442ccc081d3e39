#include "zelk/convert/stream.h"

#include <cxxabi.h>

#include <cstddef>
#include <istream>
#include <ostream>
#include <string>

#include "zelk/convert/text.h"

namespace zelk {
namespace {

/// Whether `word` and `c` together still begin a rational, given that `word` does.
bool may_follow(std::string const& word, char c) {
  auto const is_digit = [](char d) { return d >= '0' && d <= '9'; };
  auto const after_digit = [&] { return !word.empty() && is_digit(word.back()); };
  auto const after_e = [&] { return word.ends_with('e') || word.ends_with('E'); };
  auto const has = [&](char const* marks) {
    return word.find_first_of(marks) != std::string::npos;
  };
  switch (c) {
    case '-':
      return word.empty() || after_e();
    case '+':
      return after_e();
    case '/':
    case '.':
      return after_digit() && !has("/.eE");
    case 'e':
    case 'E':
      return after_digit() && !has("/eE");
    default:
      return is_digit(c);
  }
}

/// Sets badbit as well, without the exception that the stream may throw for it: the caller has a
/// better one to throw.
void set_badbit(std::istream& in, std::ios_base::iostate state) {
  try {
    in.setstate(state | std::ios_base::badbit);
  } catch (std::ios_base::failure const&) {
  }
}

}  // namespace

std::ostream& operator<<(std::ostream& out, QNumber const& q) {
  auto text = convert::to_string(q);
  auto const width = out.width();
  auto const size = static_cast<std::streamsize>(text.size());
  std::size_t const sign = q.sign() < 0 ? 1 : 0;
  if ((out.flags() & std::ios_base::adjustfield) == std::ios_base::internal && width > size)
    text.insert(sign, static_cast<std::size_t>(width - size), out.fill());
  return out << text;
}

// When a thread is cancelled, what is caught as __forced_unwind is a reference to nothing, at which
// the sanitizer of null pointers would stop.
__attribute__((no_sanitize("null"))) std::istream& operator>>(std::istream& in, QNumber& q) {
  using Traits = std::istream::traits_type;
  std::istream::sentry const ready(in);
  if (!ready) return in;
  auto state = std::ios_base::goodbit;
  try {
    std::string word;
    auto& buffer = *in.rdbuf();
    auto next = buffer.sgetc();
    while (!Traits::eq_int_type(next, Traits::eof()) &&
           may_follow(word, Traits::to_char_type(next))) {
      word += Traits::to_char_type(next);
      next = buffer.snextc();
    }
    if (Traits::eq_int_type(next, Traits::eof())) state |= std::ios_base::eofbit;
    q = convert::parse_rational(word);
  } catch (convert::ParseError const&) {
    state |= std::ios_base::failbit;
#ifdef __GLIBCXX__
  } catch (abi::__forced_unwind const&) {
    set_badbit(in, state);  // the thread is being cancelled: this has to be thrown on
    throw;
#endif
  } catch (...) {
    set_badbit(in, state);
    if ((in.exceptions() & std::ios_base::badbit) != 0) throw;
    return in;
  }
  in.setstate(state);
  return in;
}

}  // namespace zelk
