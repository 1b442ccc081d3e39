#pragma once

#include <stdexcept>
#include <string>

namespace zelk::test {

/// What `act` says when it refuses; empty when it does not.
template <class Act>
std::string refusal(Act act) {
  try {
    act();
  } catch (std::invalid_argument const& error) {
    return error.what();
  }
  return "";
}

}  // namespace zelk::test
