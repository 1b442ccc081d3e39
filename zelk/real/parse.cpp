#include "zelk/real/parse.h"

#include <string>
#include <utility>
#include <vector>

#include "zelk/real/internal/kinds.h"
#include "zelk/real/internal/scanner.h"
#include "zelk/real/internal/spelling.h"

namespace zelk::real {

namespace {

/// Dijkstra's shunting yard: an operation waits on a stack until what follows binds less tightly.
class Parser {
 public:
  explicit Parser(std::string_view text) : scanner(text) {}

  Expression parse() {
    do {
      read_operand();
    } while (read_infix());
    finish_operations(0);
    if (!waiting.empty()) scanner.refuse(waiting.back().place, "this parenthesis is not closed");
    return Expression::from_postfix(std::move(kinds), std::move(numbers));
  }

 private:
  /// An operator, or an open parenthesis with the function before it, if there is one.
  struct Waiting {
    Row const* row;
    bool is_open;
    std::size_t place;
    unsigned arguments = 1;
  };

  /// Everything up to the end of a number, a constant or an interval.
  void read_operand() {
    for (;;) {
      auto const place = scanner.place();
      if (scanner.accept('+')) continue;
      if (scanner.accept('-')) {
        waiting.push_back({find_operator('-', 1), false, place});
      } else if (scanner.accept('(')) {
        waiting.push_back({nullptr, true, place});
      } else if (scanner.accept('[')) {
        return append(scanner.interval(place));
      } else if (scanner.is_at_number()) {
        return append(scanner.number());
      } else if (scanner.is_at_name()) {
        auto const& row = read_name();
        if (row.arity == 0) return kinds.push_back(row.kind);
        auto const parenthesis = scanner.place();
        if (!scanner.accept('('))
          scanner.refuse(parenthesis, "expected ( after " + std::string(row.name));
        waiting.push_back({&row, true, parenthesis});
        // A function without arguments is told how many it takes.
        if (scanner.next() == ')') refuse_arguments(waiting.back(), 0);
      } else {
        refuse_operand();
      }
    }
  }

  /// Everything up to the next operand; false at the end.
  bool read_infix() {
    for (;;) {
      auto const place = scanner.place();
      if (scanner.is_at_end()) return false;
      char const symbol = scanner.next();
      if (symbol == ')') {
        close(place);
      } else if (symbol == ',') {
        finish_operations(0);
        if (waiting.empty() || waiting.back().row == nullptr)
          scanner.refuse(place, "a comma stands between the arguments of a function only");
        ++waiting.back().arguments;
        return scanner.accept(symbol);
      } else if (auto const* row = find_operator(symbol, 2)) {
        finish_operations(row->precedence + (row->groups_right ? 1 : 0));
        waiting.push_back({row, false, place});
        return scanner.accept(symbol);
      } else {
        refuse_infix();
      }
    }
  }

  /// Those that bind as tightly as `precedence` at least, up to the last open parenthesis.
  void finish_operations(unsigned precedence) {
    while (!waiting.empty() && !waiting.back().is_open &&
           waiting.back().row->precedence >= precedence) {
      kinds.push_back(waiting.back().row->kind);
      waiting.pop_back();
    }
  }

  void close(std::size_t place) {
    finish_operations(0);
    if (waiting.empty()) scanner.refuse(place, "no parenthesis is open");
    auto const open = waiting.back();
    waiting.pop_back();
    if (open.row != nullptr) {
      if (open.arguments != open.row->arity) refuse_arguments(open, open.arguments);
      kinds.push_back(open.row->kind);
    }
    scanner.accept(')');
  }

  Row const& read_name() {
    auto const place = scanner.place();
    auto const name = scanner.name();
    if (auto const* row = find_name(name)) return *row;
    std::string reason = "unknown name";
    if (auto const nearest = nearest_name(name); !nearest.empty())
      reason += "; did you mean " + std::string(nearest) + '?';
    scanner.refuse(place, reason);
  }

  void append(Interval constant) {
    kinds.push_back(Kind::number);
    numbers.push_back(std::move(constant));
  }

  [[noreturn]] void refuse_operand() {
    scanner.refuse(scanner.place(), scanner.is_at_end() ? "an operand is missing at the end"
                                                        : "expected an operand");
  }

  [[noreturn]] void refuse_infix() {
    bool const is_operand = scanner.is_at_number() || scanner.is_at_name() ||
                            scanner.next() == '(' || scanner.next() == '[';
    scanner.refuse(scanner.place(), is_operand ? "expected an operator; a product is written with *"
                                               : "expected an operator");
  }

  [[noreturn]] void refuse_arguments(Waiting const& call, unsigned count) {
    auto const arity = call.row->arity;
    scanner.refuse(call.place, std::string(call.row->name) + " takes " + std::to_string(arity) +
                                   (arity == 1 ? " argument, not " : " arguments, not ") +
                                   std::to_string(count));
  }

  Scanner scanner;
  std::vector<Waiting> waiting;
  std::vector<Kind> kinds;
  std::vector<Interval> numbers;
};

}  // namespace

Expression parse_expression(std::string_view text) { return Parser(text).parse(); }

}  // namespace zelk::real
