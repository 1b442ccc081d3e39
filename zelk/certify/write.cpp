#include "zelk/certify/write.h"

#include <vector>

#include "zelk/convert/text.h"

namespace zelk::certify {

namespace {

std::string list_of(std::vector<std::size_t> const& numbers) {
  std::string text = "[";
  for (auto const number : numbers)
    text += (text.size() > 1 ? ",\"" : "\"") + std::to_string(number) + '"';
  return text + "]";
}

}  // namespace

std::string to_json_lines(verify::Certificate const& certificate) {
  auto const& claims = certificate.claims;
  std::string lines = R"({"certificate":"1","claims":")" + std::to_string(claims.size()) +
                      R"(","statement":")" + certificate.statement + "\"}\n";
  for (auto const& claim : claims) {
    lines += R"({"theorem":")" + claim.theorem + R"(","arguments":)" + list_of(claim.arguments) +
             R"(,"premises":)" + list_of(claim.premises) + R"(,"lower":")" +
             convert::to_string(claim.lower) + R"(","upper":")" + convert::to_string(claim.upper) +
             "\"}\n";
  }
  return lines;
}

}  // namespace zelk::certify
