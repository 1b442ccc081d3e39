#include <mpfi.h>

#include <algorithm>
#include <cstddef>
#include <deque>
#include <iterator>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/fuzz/body.h"
#include "tests/support/random_number.h"
#include "zelk/convert/text.h"
#include "zelk/numbers/functions.h"
#include "zelk/real/enclose.h"
#include "zelk/real/parse.h"

namespace zelk::test {
namespace {

using namespace real;

constexpr unsigned most_digits = 40;

/// The bytes themselves, or a formula of what they choose, which is always well formed.
std::string text_of(Bytes bytes) {
  if (bytes.empty() || bytes.front() < 128) return {bytes.begin(), bytes.end()};
  constexpr std::string_view operands[] = {"0",       "1",   "2",  "3.5", "1e-9", "7/3",   "[1, 2]",
                                           "[-1, 1]", "1e9", "pi", "e",   "x",    "1/1000"};
  constexpr std::string_view operations[] = {"+",   "-",    "*",    "/",    "^",    "+",    "-",
                                             "*",   "/",    "exp",  "log",  "sqrt", "sin",  "cos",
                                             "tan", "atan", "asin", "acos", "sinh", "cosh", "tanh",
                                             "-",   "root", "+",    "*"};
  ByteReader next{bytes.subspan(1)};
  std::vector<std::string> formulas = {"2"};
  while (!next.done() && formulas.back().size() < 150) {
    unsigned const choice = next();
    if (choice % 2 == 0) {
      formulas.emplace_back(operands[choice / 2 % std::size(operands)]);
      continue;
    }
    auto const operation = operations[choice / 2 % std::size(operations)];
    std::string const last = formulas.back();
    bool const is_binary = operation.size() == 1 && formulas.size() > 1;
    if (is_binary) formulas.pop_back();
    auto& formula = formulas.back();
    if (operation == "root")
      formula = "root(" + formula + ", " + std::to_string(1 + next() % 5) + ")";
    else if (is_binary)
      formula = "(" + formula + ")" + std::string(operation) + "(" + last + ")";
    else
      formula = (operation.size() == 1 ? "-" : std::string(operation)) + "(" + formula + ")";
  }
  return formulas.back();
}

/// MPFI's intervals, by the same rules.
class Oracle {
 public:
  Oracle() = default;
  Oracle(Oracle const&) = delete;
  Oracle& operator=(Oracle const&) = delete;
  ~Oracle() {
    for (auto& x : values) mpfi_clear(&x);
  }

  /// Null if it does not know an operation.
  mpfi_srcptr evaluate(Expression const& expression) {
    auto number = expression.numbers().begin();
    for (Kind const kind : expression.postfix())
      if (kind == Kind::number)
        push(*number++);
      else if (!apply(kind))
        return nullptr;
    return &values.back();
  }

 private:
  void push(Interval const& x) {
    mpfi_init2(&values.emplace_back(), 1000);
    mpfi_set_q(&values.back(), to_rational(x.lower()).get_mpq_t());
    mpfi_put_q(&values.back(), to_rational(x.upper()).get_mpq_t());
  }

  bool apply(Kind kind) {
    static std::map<Kind, int (*)(mpfi_ptr, mpfi_srcptr)> const functions = {
        {Kind::negative, mpfi_neg}, {Kind::exp, mpfi_exp},   {Kind::log, mpfi_log},
        {Kind::sqrt, mpfi_sqrt},    {Kind::sin, mpfi_sin},   {Kind::cos, mpfi_cos},
        {Kind::tan, mpfi_tan},      {Kind::atan, mpfi_atan}, {Kind::asin, mpfi_asin},
        {Kind::acos, mpfi_acos},    {Kind::sinh, mpfi_sinh}, {Kind::cosh, mpfi_cosh},
        {Kind::tanh, mpfi_tanh}};
    static std::map<Kind, int (*)(mpfi_ptr, mpfi_srcptr, mpfi_srcptr)> const operators = {
        {Kind::sum, mpfi_add},
        {Kind::difference, mpfi_sub},
        {Kind::product, mpfi_mul},
        {Kind::quotient, mpfi_div}};
    if (kind == Kind::pi || kind == Kind::e) {
      push(1);
      kind == Kind::pi ? mpfi_const_pi(&values.back()) : mpfi_exp(&values.back(), &values.back());
    } else if (functions.contains(kind)) {
      if (kind == Kind::tan && is_tiny(values.back())) return false;
      functions.at(kind)(&values.back(), &values.back());
    } else if (operators.contains(kind)) {
      auto* const first = &values[values.size() - 2];
      operators.at(kind)(first, first, &values.back());
      mpfi_clear(&values.back());
      values.pop_back();
    } else {
      return false;
    }
    return true;
  }

  /// MPFI's tangent takes as many bits as its operand begins with zeros.
  static bool is_tiny(__mpfi_struct const& x) {
    auto const is_tiny_end = [](mpfr_srcptr end) {
      return mpfr_regular_p(end) != 0 && mpfr_get_exp(end) < -100'000;
    };
    return is_tiny_end(&x.left) || is_tiny_end(&x.right);
  }

  std::deque<__mpfi_struct> values;
};

std::optional<Expression> parsed(std::string const& text) {
  try {
    return parse_expression(text).at(Interval(QNumber(-1, 3), QNumber(2)));
  } catch (convert::ParseError const& error) {
    CHECK(error.column() >= 1 && error.column() <= text.size() + 1);
    return std::nullopt;
  }
}

QNumber unit(unsigned digits) { return zelk::pow(10, -static_cast<long>(digits)); }

void check_expression(Expression const& expression) {
  ElementaryFunctions functions(1e5);
  auto const coarse = enclose(functions, expression, 2, most_digits);
  auto const fine = enclose(functions, expression, 14, most_digits);
  auto const& [low, high] = std::pair(fine.bounds.lower(), fine.bounds.upper());
  Interval const margin(-unit(14), unit(14));
  CHECK((coarse.bounds + margin).contains(fine.bounds));
  CHECK(fine.is_narrow == (fine.bounds.width() <= unit(14)));
  CHECK(coarse.is_narrow || coarse.bounds.width() > unit(2));
  bool const is_point = std::all_of(expression.numbers().begin(), expression.numbers().end(),
                                    [](Interval const& number) { return number.is_point(); });
  CHECK(fine.is_narrow || !is_point);

  auto const sign = real::sign(functions, expression, most_digits);
  if (sign)
    CHECK(*sign > 0 ? high.sign() > 0 : *sign < 0 ? low.sign() < 0 : fine.bounds.contains(0));
  auto const terms = real::terms(functions, expression, 4, most_digits).terms;
  if (!terms.empty()) CHECK(terms[0] <= high && low <= terms[0] + 1);

  Oracle oracle;
  auto const* const truth = oracle.evaluate(expression);
  if (truth == nullptr || mpfi_bounded_p(truth) == 0) return;
  auto const order = [](mpfr_srcptr end, QNumber const& q) {
    return mpfr_cmp_q(end, to_rational(q).get_mpq_t());
  };
  CHECK(order(&truth->left, high) <= 0 && order(&truth->right, low) >= 0);
  CHECK(order(&truth->left, low + unit(14)) <= 0 && order(&truth->right, high - unit(14)) >= 0);
}

}  // namespace

void run_expressions(Bytes bytes) {
  auto const expression = parsed(text_of(bytes));
  if (!expression) return;
  try {
    check_expression(*expression);
  } catch (std::domain_error const&) {  // not defined, or not known to be
  } catch (std::length_error const&) {  // too long
  }
}

}  // namespace zelk::test
