#include <benchmark/benchmark.h>

#include "benchmarks/peers.h"
#include "benchmarks/row.h"
#include "zelk/approx/rational_approximator.h"

namespace zelk::bench {

namespace {

/// The complete expansion by a new approximator, which enters it in its cache and hands out a copy.
std::vector<QNumber> terms(QNumber const& q) {
  na::RationalApproximator approximator;
  return approximator.get_cf(q, 1U << 20).terms;
}

/// FLINT's, which it writes into a vector of the caller's.
template <class Visit>
void with_flint_terms(Fmpq const& q, Visit visit) {
  slong const bound = fmpq_cfrac_bound(q);
  fmpz* const found = _fmpz_vec_init(bound);
  Fmpq rest;
  visit(found, fmpq_get_cfrac(found, rest, q, bound));
  _fmpz_vec_clear(found, bound);
}

}  // namespace

void enter_expansion() {
  gmp_randclass random(gmp_randinit_mt);
  for (unsigned const bits : {10U, 62U, 128U, 512U, 2048U, 8192U}) {
    mpz_class const half = mpz_class(1) << (bits - 1);
    mpq_class q(half + random.get_z_bits(bits - 1), half + random.get_z_bits(bits - 1));
    q.canonicalize();
    auto const ours = std::make_shared<QNumber>(from_mpq<QNumber>(q));
    auto const theirs = std::make_shared<Fmpq>(q);

    Row("Continued fraction, all terms", "parts of " + std::to_string(bits) + " bits")
        .enter(
            "zelk", [ours] { benchmark::DoNotOptimize(terms(*ours)); },
            [ours] {
              Answer all;
              for (QNumber const& term : terms(*ours)) all.push_back(to_mpq(term));
              return all;
            })
        .enter(
            "FLINT",
            [theirs] {
              with_flint_terms(*theirs,
                               [](fmpz* found, slong) { benchmark::DoNotOptimize(found); });
            },
            [theirs] {
              Answer all;
              with_flint_terms(*theirs, [&](fmpz const* found, slong count) {
                for (slong i = 0; i < count; ++i) {
                  mpz_class term;
                  fmpz_get_mpz(term.get_mpz_t(), found + i);
                  all.emplace_back(term);
                }
              });
              return all;
            });
  }
}

}  // namespace zelk::bench
