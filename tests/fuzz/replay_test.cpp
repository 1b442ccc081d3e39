#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string_view>
#include <vector>

#include "tests/fuzz/body.h"
#include "tests/support/random_number.h"

namespace zelk::test {
namespace {

struct Body {
  char const* name;
  void (*run)(Bytes);
  std::string_view alphabet;  // of random strings; empty: all bytes
  int strings;
  unsigned length;  // at most

  friend std::ostream& operator<<(std::ostream& out, Body const& body) { return out << body.name; }
};

class Replay : public testing::TestWithParam<Body> {
 protected:
  static void run(std::vector<std::uint8_t> const& bytes) {
    try {
      GetParam().run(bytes);
    } catch (CheckFailure const& failure) {
      FAIL() << failure.what() << "\nfor the bytes " << testing::PrintToString(bytes);
    }
  }
};

TEST_P(Replay, Corpus) {
  auto const folder = std::filesystem::path(FUZZ_CORPUS) / GetParam().name;
  for (auto const& entry : std::filesystem::directory_iterator(folder)) {
    std::ifstream file(entry.path(), std::ios::binary);
    run({std::istreambuf_iterator<char>(file), {}});
  }
}

TEST_P(Replay, RandomStrings) {
  auto const& [name, body, alphabet, strings, length] = GetParam();
  auto next = random_bytes(1);
  for (int i = 0; i < strings && !HasFailure(); ++i) {
    std::vector<std::uint8_t> bytes((next() << 8 | next()) % (length + 1));
    for (auto& byte : bytes) {
      byte = static_cast<std::uint8_t>(next());
      if (!alphabet.empty()) byte = static_cast<std::uint8_t>(alphabet[byte % alphabet.size()]);
    }
    run(bytes);
  }
}

INSTANTIATE_TEST_SUITE_P(Bodies, Replay,
                         testing::Values(Body{"numbers", run_numbers, {}, 3000, 600},
                                         Body{"tables", run_tables, {}, 1500, 300},
                                         Body{"text", run_text, "0012345789//-..eE+ ", 30000, 16},
                                         Body{"queries", run_queries, {}, 500, 80},
                                         Body{"expressions", run_expressions, {}, 3000, 30}),
                         testing::PrintToStringParamName());

TEST(Queries, HoldAtThePointsOfTheTests) { run_points(); }

}  // namespace
}  // namespace zelk::test
