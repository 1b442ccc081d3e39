#include "zelk/real/internal/kinds.h"

#include <array>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "zelk/numbers/functions.h"
#include "zelk/real/errors.h"

namespace zelk::real {

namespace {

/// About log2 |q|, also near 1, where it is small. Requires: q is not 0.
double log2_of(QNumber const& q) {
  // Of two integers, and of the exponents that their doubles would not hold.
  auto const quotient = [](mpz_srcptr n, mpz_srcptr d) {
    long exponent_of_n = 0, exponent_of_d = 0;
    double const mantissas = mpz_get_d_2exp(&exponent_of_n, n) / mpz_get_d_2exp(&exponent_of_d, d);
    return std::pair(mantissas, static_cast<double>(exponent_of_n - exponent_of_d));
  };
  auto const size = abs(q);
  auto const [mantissas, exponent] = quotient(size.numerator(), size.denominator());
  if (std::abs(exponent) > 1) return std::log2(mantissas) + exponent;
  auto const beyond_one = size - 1;
  if (beyond_one.is_zero()) return 0;
  auto const [part, scale] = quotient(beyond_one.numerator(), beyond_one.denominator());
  return std::log1p(part * std::exp2(scale)) / std::log(2);
}

// Where results are asked for with so many significant digits, whatever their size; elsewhere they
// are not small, or so small that their zeros alone would be long.

bool where_zeros_matter(Precision const& precision, Interval const&) {
  return precision.keeps_zeros();
}
bool always(Precision const&, Interval const&) { return true; }

bool is_beyond_one(Precision const& precision, Interval const& x) {
  return precision.keeps_zeros() || !(x.lower() < 1) || !(-1 < x.upper());
}

bool has_moderate_exp(Precision const& precision, Interval const& x) {
  // e^-2^n has less than 2^(n + 1) zeros.
  return x.lower().sign() >= 0 || precision.has_room_for_zeros(std::exp2(log2_of(x.lower()) + 1));
}

/// A function of one operand.
template <auto function, auto is_relative>
Value apply(Precision const& precision, Operands x) {
  auto const accuracy = precision.accuracy(is_relative(precision, x[0].outer()));
  return precision.image(x[0], accuracy, [&](Interval const& argument) {
    return (precision.functions().*function)(argument, accuracy);
  });
}

Value no_variable(Precision const&, Operands) {
  throw std::invalid_argument("the variable x has no value");
}

Value pi(Precision const& precision, Operands) {
  return Value::number(precision.functions().pi(precision.accuracy(false)));
}

Value e(Precision const& precision, Operands) {
  return Value::number(precision.functions().exp(1, precision.accuracy(false)));
}

Value negative(Precision const&, Operands x) { return -x[0]; }

Value sum(Precision const& precision, Operands x) {
  return precision.rational(x[0], x[1], [](Value const& a, Value const& b) { return a + b; });
}

Value difference(Precision const& precision, Operands x) {
  return precision.rational(x[0], x[1], [](Value const& a, Value const& b) { return a + -b; });
}

Value product(Precision const& precision, Operands x) {
  return precision.rational(x[0], x[1], [](Value const& a, Value const& b) { return a * b; });
}

Value quotient(Precision const& precision, Operands x) {
  return precision.rational(x[0], x[1],
                            [](Value const& a, Value const& b) { return a * inverse(b); });
}

Value rational_power(Precision const& precision, Value const& base, QNumber const& exponent) {
  auto const x = base.outer();
  if (exponent.is_zero()) return Value(1);
  double const times = std::exp2(log2_of(exponent));
  if (base.is_exact() && exponent.is_integer() && precision.is_short(size_of(x) * times))
    return Value(real::pow(x, exponent.to_small().small_numerator()));
  bool is_moderate = true;
  for (auto const* end : {&x.lower(), &x.upper()}) {
    if (end->is_zero()) continue;
    double const bits = exponent.sign() * log2_of(*end) * times;
    precision.require_room(bits);
    is_moderate = is_moderate && precision.has_room_for_zeros(-bits);
  }
  auto const accuracy = precision.accuracy(is_moderate);
  return precision.image(base, accuracy, [&](Interval const& argument) {
    return precision.functions().pow(argument, exponent, accuracy);
  });
}

Value power(Precision const& precision, Operands x) {
  Value const &base = x[0], &exponent = x[1];
  if (exponent.is_number() && exponent.is_exact())
    return rational_power(precision, base, exponent.lower_end().lower());
  if (base.outer().lower().sign() <= 0)
    throw Undefined("power of what is not positive to what is not known to be rational");
  Value const logarithm[] = {
      apply<&ElementaryFunctions::log, where_zeros_matter>(precision, Operands(&base, 1))};
  Value const factors[] = {exponent, logarithm[0]};
  Value const whole[] = {product(precision, factors)};
  return apply<&ElementaryFunctions::exp, has_moderate_exp>(precision, whole);
}

Value root_of_degree(Precision const& precision, Value const& x, unsigned long degree) {
  auto const accuracy = precision.accuracy(true);
  return precision.image(x, accuracy, [&](Interval const& argument) {
    return precision.functions().root(argument, degree, accuracy);
  });
}

Value root(Precision const& precision, Operands x) {
  auto const& degree = x[1].lower_end().lower();
  if (!x[1].is_number() || !x[1].is_exact() || !degree.is_integer() || degree.sign() <= 0 ||
      !mpz_fits_ulong_p(degree.numerator()))
    throw Undefined("the degree of a root is not known to be a positive integer");
  return root_of_degree(precision, x[0], mpz_get_ui(degree.numerator()));
}

Value sqrt(Precision const& precision, Operands x) { return root_of_degree(precision, x[0], 2); }

using Functions = ElementaryFunctions;

// The signs of operations.

Signs any_sign(SignsOf) { return {true, true, true}; }
Signs positive(SignsOf) { return {false, false, true}; }
Signs the_same(SignsOf x) { return x[0]; }
Signs the_opposite(SignsOf x) { return -x[0]; }
Signs of_sum(SignsOf x) { return x[0] + x[1]; }
Signs of_difference(SignsOf x) { return x[0] + -x[1]; }
Signs of_product(SignsOf x) { return x[0] * x[1]; }  // and of quotients: no divisor is 0 here
Signs of_power(SignsOf x) { return {x[0].negative, x[0].zero, true}; }

constexpr std::array rows = {
    Row{Kind::number, "", 0, nullptr, nullptr},
    Row{Kind::variable, "x", 0, no_variable, any_sign},
    Row{Kind::pi, "pi", 0, pi, positive},
    Row{Kind::e, "e", 0, e, positive},
    Row{Kind::negative, "-", 1, negative, the_opposite, 3},
    Row{Kind::sum, "+", 2, sum, of_sum, 1},
    Row{Kind::difference, "-", 2, difference, of_difference, 1},
    Row{Kind::product, "*", 2, product, of_product, 2},
    Row{Kind::quotient, "/", 2, quotient, of_product, 2},
    Row{Kind::power, "^", 2, power, of_power, 4, true},
    Row{Kind::exp, "exp", 1, apply<&Functions::exp, has_moderate_exp>, positive},
    Row{Kind::log, "log", 1, apply<&Functions::log, where_zeros_matter>, any_sign, 0, false, "ln"},
    Row{Kind::root, "root", 2, root, the_same},
    Row{Kind::sqrt, "sqrt", 1, sqrt, the_same},
    Row{Kind::sin, "sin", 1, apply<&Functions::sin, where_zeros_matter>, any_sign},
    Row{Kind::cos, "cos", 1, apply<&Functions::cos, where_zeros_matter>, any_sign},
    Row{Kind::tan, "tan", 1, apply<&Functions::tan, where_zeros_matter>, any_sign},
    Row{Kind::atan, "atan", 1, apply<&Functions::atan, where_zeros_matter>, the_same},
    Row{Kind::asin, "asin", 1, apply<&Functions::asin, where_zeros_matter>, the_same},
    Row{Kind::acos, "acos", 1, apply<&Functions::acos, where_zeros_matter>, any_sign},
    Row{Kind::sinh, "sinh", 1, apply<&Functions::sinh, is_beyond_one>, the_same},
    Row{Kind::cosh, "cosh", 1, apply<&Functions::cosh, always>, positive},
    Row{Kind::tanh, "tanh", 1, apply<&Functions::tanh, where_zeros_matter>, the_same},
};

constexpr bool rows_are_in_order() {
  for (std::size_t i = 0; i < rows.size(); ++i)
    if (rows[i].kind != static_cast<Kind>(i)) return false;
  return rows.back().kind == Kind::tanh;  // the last of all
}
static_assert(rows_are_in_order(), "each kind has its row, where its number says");

}  // namespace

Row const& row_of(Kind kind) { return rows[static_cast<std::size_t>(kind)]; }

std::span<Row const> all_rows() { return rows; }

}  // namespace zelk::real
