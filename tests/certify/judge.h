#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "zelk/verify/read.h"
#include "zelk/verify/verify.h"

/// Both checkers of certificates at once.
namespace zelk::test {

inline std::string judge(std::string_view lines, verify::Limits const& limits,
                         verify::Question const& asked) {
  try {
    auto const verdict = verify::verify(verify::read_certificate(lines, limits), limits, asked);
    return verdict.is_accepted
               ? "accepted: " + verdict.statement
               : "rejected: claim " + std::to_string(verdict.claim) + ": " + verdict.reason;
  } catch (verify::NoCertificate const& error) {
    return std::string("no certificate: ") + error.what();
  }
}

/// The verdicts on the certificates of each text, after they have been found to be the same of the
/// other checker, word for word, with its exit status. It reads the first from standard input.
inline std::vector<std::string> judge_by_both(std::vector<std::string> const& texts,
                                              verify::Limits const& limits = {},
                                              verify::Question const& asked = {}) {
  std::string command = CHECK_CERTIFICATE " --work " + std::to_string(std::llround(limits.work));
  if (asked.statement) command += " --statement '" + *asked.statement + "'";
  if (asked.digits) command += " --digits " + std::to_string(*asked.digits);
  if (asked.is_relative) command += " --relative";
  std::vector<std::string> paths;
  for (auto const& text : texts) {
    paths.push_back(testing::TempDir() + "zelk_" + std::to_string(getpid()) + "_" +
                    std::to_string(paths.size()));
    std::ofstream(paths.back()) << text;
    command += paths.size() == 1 ? " - <'" + paths.back() + "'" : " '" + paths.back() + "'";
  }
  auto* const pipe = popen(command.c_str(), "r");
  std::string output;
  for (int c = 0; (c = std::fgetc(pipe)) != EOF;) output += static_cast<char>(c);
  int const status = WEXITSTATUS(pclose(pipe));
  for (auto const& path : paths) std::remove(path.c_str());

  std::vector<std::string> verdicts;
  std::istringstream lines(output);
  int worst = 0;
  for (std::string_view text : texts) do {
      auto const one = verify::next_certificate(text);
      verdicts.push_back(judge(one, limits, asked));
      std::string line;
      std::getline(lines, line);
      EXPECT_EQ(verdicts.back(), line) << one.substr(0, 2000);
      int const verdict = line.starts_with("accepted") ? 0 : line.starts_with("rejected") ? 1 : 2;
      worst = std::max(worst, verdict);
    } while (!text.empty());
  EXPECT_EQ(status, worst);
  return verdicts;
}

}  // namespace zelk::test
