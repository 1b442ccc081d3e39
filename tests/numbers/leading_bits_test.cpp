#include "zelk/numbers/internal/leading_bits.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <vector>

#include "zelk/numbers/internal/lower_bound.h"

namespace zelk {
namespace {

// The more is cut off the factors, the further a product strays from its true bits: here almost a
// unit is cut off each, at every size that a mantissa can have.
TEST(LeadingBits, NeverDecideAgainstTheExactProducts) {
  std::vector<mpz_class> factors;
  for (double size = 1; size < 2; size += 1.0 / 32)
    factors.push_back((mpz_class(size * 0x1p62) << 100) + (mpz_class(1) << 100) - 1);
  for (mpz_class const& a : factors) {
    for (mpz_class const& b : factors) {
      for (mpz_class const& c : factors) {
        mpz_class const product = a * b * c;
        auto const bits =
            LeadingBits(a.get_mpz_t()) * LeadingBits(b.get_mpz_t()) * LeadingBits(c.get_mpz_t());
        // Whatever lies below by less than 2^-59 must not be taken to be above, and far away is.
        for (mp_bitcnt_t const distance : {60U, 61U, 62U, 300U}) {
          mpz_class const less = product - (product >> distance);
          ASSERT_GE(compare(bits, LeadingBits(less.get_mpz_t())), 0);
        }
        mpz_class const far = product - (product >> 50);
        ASSERT_EQ(compare(bits, LeadingBits(far.get_mpz_t())), 1);
        ASSERT_EQ(compare(LeadingBits(far.get_mpz_t()), bits), -1);
      }
    }
  }
}

TEST(LowerBound, StaysBelowAndNear) {
  mpz_class n = 1, d = 1, a = 1, b = 1;
  LowerBound bound(n.get_mpz_t(), d.get_mpz_t());
  for (std::uint32_t k = 1; k < 300; ++k) {
    a = a * 3 % (mpz_class(1) << k) + 1;
    b = b * 7 % (mpz_class(1) << (3 * k % 200)) + 1;
    bound = bound * LowerBound(a.get_mpz_t(), b.get_mpz_t()) / (k * 14348907);
    n *= -a, d *= b * (k * 14348907);
    // Times somewhat less, and somewhat more, than its inverse.
    for (unsigned const shift : {62U, 63U, 64U, 300U}) {
      mpz_class const less = (d << shift) - d, inverse = n << shift;
      ASSERT_FALSE((bound * LowerBound(less.get_mpz_t(), inverse.get_mpz_t())).reaches_one());
    }
    mpz_class const more = (d << 48) + d, inverse = n << 48;
    ASSERT_TRUE((bound * LowerBound(more.get_mpz_t(), inverse.get_mpz_t())).reaches_one());
  }
}

}  // namespace
}  // namespace zelk
