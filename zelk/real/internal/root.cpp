#include <algorithm>
#include <optional>

#include "zelk/numbers/integer.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/real/internal/point_functions.h"
#include "zelk/work/poll.h"

namespace zelk::real {

namespace {

/// From where on GMP's root takes longer than a logarithm and an exponential.
constexpr unsigned long high_degree = 40;

/// e^(log x / degree).
Interval root_by_logarithm(QNumber const& x, unsigned long degree, long bits,
                           Constants& constants) {
  QNumber const divisor(degree);
  // The root is less than 2^size.
  long const size = std::max(magnitude(x), 0L) / static_cast<long>(std::min(degree, 1UL << 62)) + 1;
  // Exponents 2^-(bits + size + 4) apart have exponentials less than 2^-(bits + 3) apart.
  Interval const log = log_at(x, bits + size + 4, constants);
  return Interval(Interval::Ordered{exp_at(log.lower() / divisor, bits + 2, constants).lower(),
                                    exp_at(log.upper() / divisor, bits + 2, constants).upper()});
}

}  // namespace

std::optional<QNumber> rational_root(QNumber const& x, QNumber const& degree) {
  // It is one of both parts, and one of them is a power of 2 or more, unless x is 1.
  auto const size = std::max(mpz_sizeinbase(x.numerator(), 2), mpz_sizeinbase(x.denominator(), 2));
  if (x == 1) return x;
  if (!(degree < QNumber(size))) return std::nullopt;
  unsigned long const n = mpz_get_ui(degree.numerator());
  Integer numerator, denominator;
  if (n == 2 &&
      (mpz_perfect_square_p(x.denominator()) == 0 || mpz_perfect_square_p(x.numerator()) == 0))
    return std::nullopt;
  if (mpz_root(denominator, x.denominator(), n) == 0 || mpz_root(numerator, x.numerator(), n) == 0)
    return std::nullopt;
  return QNumber::from_lowest_terms({numerator, denominator});
}

Interval root_at(QNumber const& x, unsigned long degree, long bits, Constants& constants) {
  if (x.is_zero() || degree == 1) return x;
  if (auto const root = rational_root(x, degree)) return *root;
  if (degree >= high_degree) return root_by_logarithm(x, degree, bits, constants);
  Integer below, above;
  long const places = (bits + 1) * static_cast<long>(degree);
  if (places > GMP_NUMB_BITS * work::most_unasked_limbs)
    work::poll(2 * work::division(static_cast<double>(places)));
  floor_scaled(below, x, places);
  if (degree == 2)
    mpz_sqrt(below, below);
  else
    mpz_root(below, below, degree);
  mpz_add_ui(above, below, 1);
  return Interval(Interval::Ordered{dyadic(below, bits + 1), dyadic(above, bits + 1)});
}

}  // namespace zelk::real
