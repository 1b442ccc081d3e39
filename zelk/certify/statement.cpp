#include "zelk/certify/statement.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "zelk/convert/text.h"

namespace zelk::certify {

namespace {

using real::Kind;

/// With # for each operand.
std::string_view pattern_of(Kind kind) {
  switch (kind) {
    case Kind::number:
    case Kind::variable:
      break;
    case Kind::pi:
      return "pi";
    case Kind::e:
      return "exp(1)";
    case Kind::negative:
      return "(-#)";
    case Kind::sum:
      return "(# + #)";
    case Kind::difference:
      return "(# - #)";
    case Kind::product:
      return "(# * #)";
    case Kind::quotient:
      return "(# / #)";
    case Kind::power:
      return "(# ^ #)";
    case Kind::root:
      return "root(#, #)";
    case Kind::sqrt:
      return "root(#, 2)";
    case Kind::exp:
      return "exp(#)";
    case Kind::log:
      return "log(#)";
    case Kind::sin:
      return "sin(#)";
    case Kind::cos:
      return "cos(#)";
    case Kind::tan:
      return "tan(#)";
    case Kind::atan:
      return "atan(#)";
    case Kind::asin:
      return "asin(#)";
    case Kind::acos:
      return "acos(#)";
    case Kind::sinh:
      return "sinh(#)";
    case Kind::cosh:
      return "cosh(#)";
    case Kind::tanh:
      return "tanh(#)";
  }
  throw std::invalid_argument("the variable x has no value");
}

std::string text_of(real::Interval const& x) {
  auto text = convert::to_string(x.lower());
  if (!x.is_point()) return "[" + text + ", " + convert::to_string(x.upper()) + "]";
  return x.lower().is_integer() && x.lower().sign() >= 0 ? text : "(" + text + ")";
}

}  // namespace

std::string statement_of(real::Expression const& expression) {
  // From the end: there postfix has the operation before its operands, the last of them first.
  std::string reversed;
  std::vector<std::string_view> begun;  // patterns, up to the operand that is awaited
  auto number = expression.numbers().rbegin();
  auto const& postfix = expression.postfix();
  for (auto place = postfix.size(); place-- > 0;) {
    if (postfix[place] == Kind::number) {
      auto const text = text_of(*number++);
      reversed.append(text.rbegin(), text.rend());
    } else {
      begun.push_back(pattern_of(postfix[place]));
    }
    while (!begun.empty()) {
      auto& pattern = begun.back();
      auto const operand = pattern.rfind('#') + 1;  // 0 if there is none any more
      auto const rest = pattern.substr(operand);
      reversed.append(rest.rbegin(), rest.rend());
      if (operand > 0) {
        pattern = pattern.substr(0, operand - 1);
        break;
      }
      begun.pop_back();
    }
  }
  std::ranges::reverse(reversed);
  return reversed;
}

}  // namespace zelk::certify
