#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <numeric>
#include <ostream>
#include <sstream>
#include <string>
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
      std::ostringstream hex;
      for (int const byte : bytes) hex << std::hex << std::setw(2) << std::setfill('0') << byte;
      FAIL() << failure.what() << "\nfor the bytes, as xxd -r -p reads them, " << hex.str();
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
  // Whatever was memoised on the way is true, in both orders.
  for (long a = 0; a <= gcd_cache_limit; ++a) {
    for (long b = 0; b <= gcd_cache_limit; ++b) {
      long const gcd = gcd_cache[a][b];
      ASSERT_TRUE(gcd == gcd_cache[b][a] && (gcd == 0 || gcd == std::gcd(a, b))) << a << ' ' << b;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Bodies, Replay,
                         testing::Values(Body{"numbers", run_numbers, {}, 3000, 600},
                                         Body{"tables", run_tables, {}, 1500, 300},
                                         Body{"text", run_text, "0012345789//-..eE+ ", 30000, 16},
                                         Body{"queries", run_queries, {}, 1000, 150}),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace zelk::test
