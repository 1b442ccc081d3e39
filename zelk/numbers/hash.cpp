#include "zelk/numbers/hash.h"

#include <span>

namespace zelk::detail {

namespace {

/// Sign and length go in with the limbs, so that the end of one part is told from the beginning of
/// the next.
std::uint64_t mixed_limbs(std::uint64_t h, mpz_srcptr n) {
  std::span const limbs(mpz_limbs_read(n), mpz_size(n));
  h = mixed(h, 2 * limbs.size() + (mpz_sgn(n) < 0 ? 1 : 0));
  for (mp_limb_t const limb : limbs) h = mixed(h, limb);
  return h;
}

}  // namespace

std::uint64_t hash_big(QNumber const& q) {
  IntegerView const n = q.numerator();
  IntegerView const d = q.denominator();
  if (mpz_fits_slong_p(n) != 0 && mpz_fits_slong_p(d) != 0)
    return hash_words(mpz_get_si(n), mpz_get_si(d));
  return mixed_limbs(mixed_limbs(0, n), d);
}

}  // namespace zelk::detail
