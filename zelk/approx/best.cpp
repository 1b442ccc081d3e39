#include "zelk/approx/best.h"

#include <stdexcept>

#include "zelk/approx/internal/interval_expansion.h"
#include "zelk/approx/internal/quotient_matrix.h"
#include "zelk/approx/internal/ratio.h"
#include "zelk/numbers/integer.h"

namespace zelk::na {

namespace {

/// Up to here the quotients are found one by one.
constexpr mp_bitcnt_t interval_bits = 64;

/// The two neighbours of q among the numbers with denominators up to a limit that is less than q's
/// own: the last convergent h/k within it, and n/d = (h0 + count h) / (k0 + count k), as far as the
/// run from the convergent before toward the next one stays within it.
struct Neighbours {
  Neighbours(QNumber const& q, mpz_srcptr limit);

  QNumber convergent() const { return QNumber::from_lowest_terms({last.h, last.k}); }
  QNumber intermediate() const { return QNumber::from_lowest_terms({n, d}); }

  /// After an odd number of quotients the convergent lies below q, and the other above.
  bool is_convergent_below() const { return last.is_odd; }
  bool is_convergent_nearer();

  QuotientMatrix last;
  Ratio rest;  // what is left of q, above `count`
  Integer n, d, count;
};

Neighbours::Neighbours(QNumber const& q, mpz_srcptr limit) : rest(q) {
  if (mpz_sizeinbase(limit, 2) > interval_bits) {
    // No denominator above the limit comes from what all of q ± 1/limit^2 share.
    Integer unit;
    mpz_mul(unit, limit, limit);
    IntervalExpansion around;
    mpz_mul(n, unit, rest.n);
    mpz_sub(around.lower.n, n, rest.d);
    mpz_add(around.upper.n, n, rest.d);
    mpz_mul(around.lower.d, unit, rest.d);
    mpz_set(around.upper.d, around.lower.d);
    around.split_all();
    last.append(around.prefix, n);
    take_off(last, rest, n);
  }
  for (;;) {
    mpz_fdiv_qr(count, n, rest.n, rest.d);
    mpz_set(d, last.k0);
    mpz_addmul(d, count, last.k);
    if (mpz_cmp(d, limit) > 0) break;
    last.append(count.get());
    mpz_swap(rest.n, rest.d);
    mpz_swap(rest.d, n);
  }
  mpz_sub(d, limit, last.k0);
  mpz_fdiv_q(count, d, last.k);
  mpz_set(n, last.h0);
  mpz_addmul(n, count, last.h);
  mpz_set(d, last.k0);
  mpz_addmul(d, count, last.k);
}

bool Neighbours::is_convergent_nearer() {
  // In units of 1/(k d q's denominator), the convergent is d rest.d away, and the intermediate
  // k (rest.n - count rest.d).
  Integer near, far;
  mpz_mul(near, d, rest.d);
  mpz_set(far, rest.n);
  mpz_submul(far, count, rest.d);
  mpz_mul(far, far, last.k);
  int order = mpz_cmp(near, far);
  if (order == 0) order = mpz_cmp(last.k, d);
  if (order == 0) order = mpz_cmpabs(last.h, n);
  return order < 0;
}

template <class Choose>
QNumber best(QNumber const& q, QNumber const& limit, Choose takes_convergent) {
  if (!limit.is_integer() || limit.sign() <= 0)
    throw std::domain_error("the limit of denominators is not a positive integer");
  if (mpz_cmp(q.denominator(), limit.numerator()) <= 0)
    return QNumber::from_lowest_terms({q.numerator(), q.denominator()});
  Neighbours sides(q, limit.numerator());
  return takes_convergent(sides) ? sides.convergent() : sides.intermediate();
}

}  // namespace

QNumber best_below(QNumber const& q, QNumber const& limit) {
  return best(q, limit, [](Neighbours& sides) { return sides.is_convergent_below(); });
}

QNumber best_above(QNumber const& q, QNumber const& limit) {
  return best(q, limit, [](Neighbours& sides) { return !sides.is_convergent_below(); });
}

QNumber best_nearest(QNumber const& q, QNumber const& limit) {
  return best(q, limit, [](Neighbours& sides) { return sides.is_convergent_nearer(); });
}

}  // namespace zelk::na
