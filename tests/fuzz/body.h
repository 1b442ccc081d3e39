#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>

/// Tests driven by bytes: whatever the bytes are, the library has to agree with something that
/// shares no code with it. The ordinary suite runs them on a small corpus and on random strings,
/// libFuzzer on whatever it finds.
namespace zelk::test {

using Bytes = std::span<std::uint8_t const>;

void run_numbers(Bytes bytes);      // operations on a handful of numbers
void run_tables(Bytes bytes);       // operations on a table of numbers
void run_text(Bytes bytes);         // the text to parse
void run_queries(Bytes bytes);      // queries to a pair of approximators
void run_expressions(Bytes bytes);  // the text to parse and enclose, or choices of its parts
void run_points();                  // the queries at the points of the tests

/// Reads decisions off a byte string; past its end all are 0.
struct ByteReader {
  Bytes rest;

  bool done() const { return rest.empty(); }
  unsigned operator()() {
    if (done()) return 0;
    unsigned const byte = rest.front();
    rest = rest.subspan(1);
    return byte;
  }
};

/// The ordinary suite catches it and names the bytes; uncaught it ends the process, which is what
/// libFuzzer looks for.
struct CheckFailure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

inline void check(bool holds, char const* what, char const* file, int line) {
  if (!holds) throw CheckFailure(std::string(file) + ':' + std::to_string(line) + ": " + what);
}
#define CHECK(condition) \
  zelk::test::check(static_cast<bool>(condition), #condition, __FILE__, __LINE__)

}  // namespace zelk::test
