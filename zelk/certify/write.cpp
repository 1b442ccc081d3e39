#include "zelk/certify/write.h"

#include "zelk/convert/text.h"

namespace zelk::certify {

namespace {

template <class List, class Spell>
std::string list_of(List const& list, Spell const& spell) {
  std::string text = "[";
  for (auto const& each : list) text += (text.size() > 1 ? ",\"" : "\"") + spell(each) + '"';
  return text + "]";
}

}  // namespace

std::string to_json_lines(verify::Certificate const& certificate) {
  auto const& claims = certificate.claims;
  std::string lines = R"({"certificate":"1","claims":")" + std::to_string(claims.size()) +
                      R"(","statement":")" + certificate.statement + "\"}\n";
  for (auto const& claim : claims) {
    lines += R"({"theorem":")" + claim.theorem + R"(","arguments":)" +
             list_of(claim.arguments, convert::to_string) + R"(,"premises":)" +
             list_of(claim.premises, [](std::size_t n) { return std::to_string(n); }) +
             R"(,"lower":")" + convert::to_string(claim.lower) + R"(","upper":")" +
             convert::to_string(claim.upper) + "\"}\n";
  }
  return lines;
}

}  // namespace zelk::certify
