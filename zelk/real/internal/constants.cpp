#include "zelk/real/internal/constants.h"

#include "zelk/approx/short_bounds.h"
#include "zelk/real/internal/fixed_point.h"
#include "zelk/work/poll.h"

namespace zelk::real {

namespace {

/// A run of terms of n atanh(1/n), the sum of 1/((2k + 1) n^(2k)) from k = 0 on: their sum in units
/// of the power of 1/n^2 before the run is sum/(power odd).
struct Run {
  Integer power, odd, sum;
};

void sum_run(Run& run, unsigned long square, unsigned long begin, unsigned long end) {
  if (end - begin == 1) {
    mpz_set_ui(run.power, square);
    mpz_set_ui(run.odd, 2 * begin + 1);
    mpz_set_ui(run.sum, square);
    return;
  }
  unsigned long const middle = begin + (end - begin) / 2;
  sum_run(run, square, begin, middle);
  Run right;
  sum_run(right, square, middle, end);
  work::poll(5 * work::product(work::bits_of(right.power)));
  // s/(p o) + 1/p s'/(p' o') = (s p' o' + s' o)/(p p' o o')
  mpz_mul(run.sum, run.sum, right.odd);
  mpz_mul(run.sum, run.sum, right.power);
  mpz_addmul(run.sum, right.sum, run.odd);
  mpz_mul(run.power, run.power, right.power);
  mpz_mul(run.odd, run.odd, right.odd);
}

/// atanh(1/n) over 2^bits, less than 2 units below. Requires: n >= 16.
void sum_atanh(mpz_ptr below, unsigned long n, unsigned long bits) {
  // What is left out is less than n^-(2 count), and that less than 2^-bits.
  unsigned long const bits_each = 2 * (mpz_sizeinbase(Integer(n), 2) - 1);
  Run run;
  sum_run(run, n * n, 0, bits / bits_each + 1);
  work::poll(work::division(static_cast<double>(bits)));
  mpz_mul(run.odd, run.odd, run.power);
  mpz_mul_ui(run.odd, run.odd, n);
  mpz_mul_2exp(run.sum, run.sum, bits);
  mpz_fdiv_q(below, run.sum, run.odd);
}

/// The products of these powers of the primes are (n + 1)/(n - 1) for four n, so that twice the
/// values of atanh(1/n) are so made of the logarithms; and the other way round.
struct LogFormula {
  unsigned long n;
  std::array<long, 4> factor;  // of atanh(1/n) in log 2, log 3, log 5 and log 7
};
constexpr LogFormula log_formulas[] = {{251, {144, 228, 334, 404}},
                                       {449, {54, 86, 126, 152}},
                                       {4801, {-38, -60, -88, -106}},
                                       {8749, {62, 98, 144, 174}}};

/// floor(kept/2^places): of a constant in [kept, kept + 2] for places = 0, and else in
/// [2^places below, 2^places (below + 1) + 2).
void truncate(mpz_ptr below, mpz_srcptr kept, unsigned long places) {
  mpz_fdiv_q_2exp(below, kept, places);
}

/// What to compute when `bits` are asked for: some more, since calls come with slightly different
/// needs.
unsigned long with_reserve(unsigned long bits) { return bits + bits / 32 + 128; }

}  // namespace

void Constants::pi(mpz_ptr below, unsigned long bits) {
  if (pi_bits < bits) compute_pi(with_reserve(bits));
  truncate(below, kept_pi, pi_bits - bits);
}

void Constants::log_of_prime(mpz_ptr below, std::size_t index, unsigned long bits) {
  if (log_bits < bits) compute_logs(with_reserve(bits));
  truncate(below, kept_logs[index], log_bits - bits);
}

void Constants::compute_pi(unsigned long bits) {
  // 10^-digits <= 2^-(bits + 2), since log10 2 < 0.30103
  auto const digits = static_cast<unsigned>((bits + 2) * 30103 / 100000 + 1);
  floor_scaled(kept_pi, na::short_pi_bounds(digits).first, static_cast<long>(bits));
  pi_bits = bits;
}

void Constants::compute_logs(unsigned long bits) {
  // The factors of a logarithm add up to less than 2^10, so that it lies less than 2^11 units below
  // or above.
  constexpr unsigned long guard = 12;
  std::array<Integer, 4> logs;
  Integer arc;
  for (auto const& [n, factors] : log_formulas) {
    sum_atanh(arc, n, bits + guard);
    for (std::size_t i = 0; i < logs.size(); ++i)
      if (factors[i] > 0)
        mpz_addmul_ui(logs[i], arc, static_cast<unsigned long>(factors[i]));
      else
        mpz_submul_ui(logs[i], arc, static_cast<unsigned long>(-factors[i]));
  }
  for (std::size_t i = 0; i < logs.size(); ++i) {
    mpz_sub_ui(logs[i], logs[i], 1UL << (guard - 1));
    mpz_fdiv_q_2exp(kept_logs[i], logs[i], guard);
  }
  log_bits = bits;
}

}  // namespace zelk::real
