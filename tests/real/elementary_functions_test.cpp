#include "zelk/real/elementary_functions.h"

#include <gtest/gtest.h>
#include <mpfi.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/random_number.h"
#include "tests/support/text_form.h"
#include "zelk/numbers/functions.h"
#include "zelk/numbers/integer.h"
#include "zelk/real/errors.h"
#include "zelk/real/internal/composed_functions.h"
#include "zelk/real/internal/constants.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/point_functions.h"

namespace zelk::real {
namespace {

using test::number;
using test::to_rational;

using Predicate = bool (*)(Interval const&);
bool is_any(Interval const&) { return true; }
bool is_positive(Interval const& x) { return x.lower().sign() > 0; }
bool is_not_negative(Interval const& x) { return x.lower().sign() >= 0; }
bool is_within_one(Interval const& x) { return Interval(-1, 1).contains(x); }
bool is_moderate(Interval const& x) { return Interval(-3000, 3000).contains(x); }
bool is_from_one_on(Interval const& x) { return x.lower() >= 1; }

Interval sqrt_at(QNumber const& x, long bits, Constants& constants) {
  return root_at(x, 2, bits, constants);
}

/// One function by this library and by MPFI, whose intervals are hundreds of digits narrower than
/// what is compared with them.
struct Row {
  char const* name;
  Interval (ElementaryFunctions::*own)(Interval const&, Accuracy);
  int (*truth)(mpfi_ptr, mpfi_srcptr);
  Interval (*at)(QNumber const&, long, Constants&);
  Predicate is_defined = is_any;
  Predicate is_possible = is_any;
};

Row const rows[] = {
    {"exp", &ElementaryFunctions::exp, mpfi_exp, exp_at, is_moderate},
    {"log", &ElementaryFunctions::log, mpfi_log, log_at, is_positive},
    {"sqrt", &ElementaryFunctions::sqrt, mpfi_sqrt, sqrt_at, is_not_negative},
    {"sin", &ElementaryFunctions::sin, mpfi_sin, sin_at, is_any, is_within_one},
    {"cos", &ElementaryFunctions::cos, mpfi_cos, cos_at, is_any, is_within_one},
    {"tan", &ElementaryFunctions::tan, mpfi_tan, tan_at},
    {"asin", &ElementaryFunctions::asin, mpfi_asin, asin_at, is_within_one},
    {"acos", &ElementaryFunctions::acos, mpfi_acos, acos_at, is_within_one},
    {"atan", &ElementaryFunctions::atan, mpfi_atan, atan_at},
    {"sinh", &ElementaryFunctions::sinh, mpfi_sinh, sinh_at, is_moderate},
    {"cosh", &ElementaryFunctions::cosh, mpfi_cosh, cosh_at, is_moderate, is_from_one_on},
    {"tanh", &ElementaryFunctions::tanh, mpfi_tanh, tanh_at, is_any, is_within_one},
};

mpq_class rational(mpfr_srcptr x) {
  mpq_class q;
  mpfr_get_q(q.get_mpq_t(), x);
  return q;
}

class Oracle {
 public:
  explicit Oracle(mpfr_prec_t bits = 5000) : precision(bits) {
    mpfi_init2(point, precision);
    mpfi_init2(image, precision);
  }
  Oracle(Oracle const&) = delete;
  Oracle& operator=(Oracle const&) = delete;
  ~Oracle() {
    mpfi_clear(point);
    mpfi_clear(image);
  }

  /// Whether each end of `answer` lies outside of the image, by what the accuracy allows at most.
  void expect(Row const& row, Interval const& x, Accuracy accuracy, Interval const& answer) {
    evaluate(row, x);
    if (mpfi_inf_p(image) != 0) {
      ADD_FAILURE() << row.name << " has a pole in " << text(x);
      return;
    }
    expect_near(row, x, accuracy, rational(&image->left) - to_rational(answer.lower()),
                rational(&image->left));
    expect_near(row, x, accuracy, to_rational(answer.upper()) - rational(&image->right),
                rational(&image->right));
    EXPECT_TRUE(row.is_possible(answer)) << row.name << text(x);
    if (x.is_point() && !accuracy.is_relative()) {
      EXPECT_TRUE(to_rational(answer.width()) <= unit(accuracy)) << row.name << text(x);
    }
  }

  /// Whether the value at x lies in there.
  bool puts(Row const& row, QNumber const& x, Interval const& enclosure) {
    evaluate(row, x);
    return rational(&image->left) >= to_rational(enclosure.lower()) &&
           rational(&image->right) <= to_rational(enclosure.upper());
  }

 private:
  void evaluate(Row const& row, Interval const& x) {
    mpfi_set_q(point, to_rational(x.lower()).get_mpq_t());
    mpfi_put_q(point, to_rational(x.upper()).get_mpq_t());
    row.truth(image, point);
  }

  static mpq_class unit(Accuracy accuracy) {
    mpz_class power;
    mpz_ui_pow_ui(power.get_mpz_t(), 10, accuracy.digits());
    return {1, power};
  }

  static std::string text(Interval const& x) {
    return " [" + test::show(x.lower()) + ", " + test::show(x.upper()) + "]";
  }

  void expect_near(Row const& row, Interval const& x, Accuracy accuracy, mpq_class const& outside,
                   mpq_class const& value) {
    mpq_class const error =
        (1 + abs(value)) / (mpz_class(1) << static_cast<mp_bitcnt_t>(precision - 1000));
    mpq_class const allowed =
        unit(accuracy) * (accuracy.is_relative() ? mpq_class(abs(value)) : mpq_class(1));
    EXPECT_TRUE(-error <= outside && outside <= allowed + error)
        << row.name << text(x) << " to " << accuracy.digits()
        << (accuracy.is_relative() ? " relative" : "") << " digits: outside by " << outside.get_d()
        << " at " << value.get_d();
  }

  mpfr_prec_t precision;
  mpfi_t point, image;
};

/// Near zeros, extrema and poles, where functions are steep or flat, and where words end.
std::vector<QNumber> hostile_points() {
  auto points = test::numbers(
      "0 1 1/2 1/3 2 10 355/113 355/226 104348/33215 710 11 4 9/16 2999 6/5 12345/7 1000000 "
      "3141592653589793/2000000000000000 9223372036854775807 10000000000000000000000 "
      "314159265358979323846264338327950288/100000000000000000000000000000000000 "
      "245850922/78256779 1/1000000000000000000000000000000 "
      "999999999999999999/1000000000000000000 1000000000000000001/1000000000000000000");
  for (std::size_t i = points.size(); i-- > 0;) points.push_back(-points[i]);
  return points;
}

template <class Error, class Call>
bool refuses(Call const& call) {
  try {
    (void)call();
  } catch (Error const&) {
    return true;
  }
  return false;
}

TEST(ElementaryFunctions, EncloseTheirImages) {
  auto const points = hostile_points();
  auto next = test::random_bytes(1);
  auto const any_point = [&] {
    if (next() % 2 != 0) return points[next() % points.size()];
    auto const q = test::to_number(test::corner_rational(next));
    return next() % 2 != 0 ? q : QNumber(static_cast<long>(next()) - 128, next() + 1);
  };
  Oracle oracle;
  ElementaryFunctions functions;
  for (auto const& row : rows) {
    auto const expect = [&](Interval const& x, Accuracy accuracy) {
      if (!row.is_defined(x)) {
        EXPECT_TRUE(row.is_defined == is_moderate ||
                    refuses<Undefined>([&] { return (functions.*row.own)(x, accuracy); }));
        return;
      }
      try {
        oracle.expect(row, x, accuracy, (functions.*row.own)(x, accuracy));
      } catch (std::domain_error const& error) {
        // Only a pole inside, which MPFI sees too.
        EXPECT_TRUE(row.truth == mpfi_tan && !x.is_point()) << row.name << error.what();
      }
    };
    for (auto const& x : points)
      for (Accuracy const accuracy : {Accuracy(0), Accuracy(20), Accuracy::relative(15)})
        expect(x, accuracy);
    for (int i = 0; i < 300; ++i) {
      auto const a = any_point();
      auto const b = next() % 4 != 0 ? a + QNumber(next(), 64) : any_point();
      unsigned const digits = next() % 40;
      bool const relative = next() % 2 != 0;
      expect({std::min(a, b), std::max(a, b)},
             relative ? Accuracy::relative(digits) : Accuracy(digits));
    }
  }
}

// Each by every series that it has: fractions, a short dyadic one, and 10/11, of no small primes.
TEST(ElementaryFunctions, EncloseTheirImagesToManyDigits) {
  Oracle oracle(12000);
  ElementaryFunctions functions;
  for (auto const& row : rows)
    for (QNumber const& x : {QNumber(1, 3), QNumber(5, 8), QNumber(10, 11), QNumber(-10, 11)})
      for (unsigned const digits : {700U, 2500U})
        if (row.is_defined(x)) oracle.expect(row, x, digits, (functions.*row.own)(x, digits));
}

TEST(PointFunctions, EncloseAsNarrowlyAsPromised) {
  Oracle oracle(2500);
  Constants constants;
  auto const expect = [&](Row const& row, std::string const& x, long bits) {
    auto const found = row.at(number(x), bits, constants);
    EXPECT_TRUE(oracle.puts(row, number(x), found) && found.width() <= zelk::pow(2, -bits))
        << row.name << ' ' << x << " to " << bits << " bits";
  };
  for (auto const& row : rows)
    for (long bits = 0; bits < 200; bits += 3)
      for (char const* const x : {"1/3", "10/11"}) expect(row, x, bits);
  for (long bits = 0; bits < 100; ++bits) expect(rows[1], "13" + std::string(60000, '0'), bits);
  expect(rows[8], "153/536870912", 844);  // where a tangent's bits that are lost count
  for (long bits = 0; bits < 100; ++bits)
    EXPECT_LE(root_at(zelk::pow(3, 5000), 41, bits, constants).width(), zelk::pow(2, -bits));
  // Among these is all that is kept, of which nothing is cut off.
  for (long bits = 1679; bits < 1879; ++bits)
    for (std::size_t i = 0; i < Constants::primes.size(); ++i) {
      Integer below, above;
      constants.log_of_prime(below, i, static_cast<unsigned long>(bits));
      mpz_add_ui(above, below, Constants::units);
      Interval const log(dyadic(below, bits), dyadic(above, bits));
      EXPECT_TRUE(oracle.puts(rows[1], Constants::primes[i], log)) << i << ' ' << bits;
    }
}

// Values beside numbers that are simpler than any other, by more than what is found of them is off.
TEST(ElementaryFunctions, KeepTheirEndsAwayFromTheirValues) {
  ElementaryFunctions f;
  for (Accuracy const accuracy : {Accuracy(13), Accuracy::relative(1), Accuracy::relative(13)})
    for (QNumber const& value : {2 + zelk::pow(2, -95), zelk::pow(2, -20) + zelk::pow(2, -72)}) {
      auto const margin = zelk::pow(10, -static_cast<long>(accuracy.digits())) *
                          zelk::pow(2, -answer_margin_bits - 8) * std::min(value, QNumber(1));
      auto const answer = 2 < value ? f.exp(f.log(value, 80).lower(), accuracy)
                                    : f.sin(f.asin(value, 80).lower(), accuracy);
      EXPECT_TRUE(answer.lower() + margin < value && value < answer.upper() - margin);
    }
}

TEST(ElementaryFunctions, GiveRationalValuesExactly) {
  ElementaryFunctions f;
  QNumber const half(1, 2);
  for (Accuracy const accuracy : {Accuracy(3), Accuracy::relative(3)}) {
    EXPECT_EQ(f.exp(0, accuracy), 1);
    EXPECT_EQ(f.log(1, accuracy), 0);
    EXPECT_EQ(f.sqrt({{9, 16}, 4}, accuracy), Interval({3, 4}, 2));
    EXPECT_EQ(f.root({-27, 0}, 3, accuracy), Interval(-3, 0));
    EXPECT_EQ(f.acos(1, accuracy), 0);
    EXPECT_EQ(f.cos({-1, 7}, accuracy), Interval(-1, 1));
    EXPECT_EQ(f.cos({0, 1}, accuracy).upper(), 1);
    EXPECT_EQ(f.cosh({-1, 1}, accuracy).lower(), 1);
    EXPECT_EQ(f.pow({-2, 1}, 2, accuracy), Interval(0, 4));
    EXPECT_EQ(f.pow({-2, -1}, -3, accuracy), Interval(-1, {-1, 8}));
    EXPECT_EQ(f.pow({-2, 3}, 0, accuracy), 1);
    EXPECT_EQ(f.pow({0, 4}, QNumber(3, 2), accuracy), Interval(0, 8));
    EXPECT_EQ(f.pow({4, 9}, -half, accuracy), Interval({1, 3}, half));
    EXPECT_EQ(f.pow({half, 4}, {-half, 2}, accuracy).upper(), 16);
    EXPECT_EQ(f.pow({{1, 4}, 4}, {-half, 2}, accuracy).lower(), QNumber(1, 16));
  }
}

// 2^x = e^(x log 2), by an exponent whose root and power would be large, and one for which they are
// not taken.
TEST(ElementaryFunctions, RaiseToFractionsByRootsAndByLogarithms) {
  ElementaryFunctions f;
  for (QNumber const& y : {QNumber(1, 3), QNumber(-7, 5), QNumber(100001, 99999), QNumber(9999, 2)})
    for (Accuracy const accuracy : {Accuracy(30), Accuracy::relative(30)}) {
      auto const power = f.pow(2, y, accuracy);
      auto const log = f.log(power, 40);
      EXPECT_TRUE(log.contains((y * f.log(2, 60)).midpoint())) << test::show(y);
      auto const unit = zelk::pow(QNumber(10), -30);
      EXPECT_LE(power.width(), accuracy.is_relative() ? unit * power.upper() : unit);
    }
}

TEST(ElementaryFunctions, RefuseWhatIsNotDefinedOrTooLong) {
  ElementaryFunctions f(1e6);
  QNumber const million(1000000), huge = zelk::pow(10, 30);
  EXPECT_TRUE(refuses<Undefined>([&] { return f.root(2, 0, 5); }));
  EXPECT_TRUE(refuses<Undefined>([&] { return f.pow({-1, 1}, QNumber(1, 3), 5); }));
  EXPECT_TRUE(refuses<Undefined>([&] { return f.pow({0, 1}, {1, 2}, 5); }));
  EXPECT_TRUE(refuses<Undefined>([&] { return f.tan({1, 2}, 5); }));
  for (Interval const& x : {Interval(0, 1), Interval(-1, 0), Interval(-1, 1)})
    EXPECT_TRUE(refuses<DivisionByZero>([&] { return f.pow(x, -2, 5); }));
  for (QNumber const& x : {million, huge, huge * huge}) {
    EXPECT_TRUE(refuses<TooLong>([&] { return f.exp(x, 5); }));
    EXPECT_TRUE(refuses<TooLong>([&] { return f.exp(-x, Accuracy::relative(5)); }));
    EXPECT_TRUE(refuses<TooLong>([&] { return f.cosh(-x, 5); }));
    EXPECT_TRUE(refuses<TooLong>([&] { return f.pow(3, x, 5); }));
    EXPECT_LE(f.exp(-x, 5).upper(), QNumber(1, 100000));
  }
  EXPECT_TRUE(refuses<TooLong>([&] { return f.sin(1, 1'000'000); }));
}

}  // namespace
}  // namespace zelk::real
