#include "zelk/real/internal/chord.h"

#include <algorithm>
#include <bit>
#include <cassert>

#include "zelk/real/internal/limb_buffer.h"
#include "zelk/work/poll.h"

namespace zelk::real {

namespace {

/// The powers u^1, ..., u^count of a u < 2^-step, over 2^(64 n), each less than 2 units below the
/// true one.
class Powers {
 public:
  Powers(mp_size_t limb_count, unsigned long bits_each, unsigned long count, LimbBuffer& room)
      : n(limb_count), step(bits_each), limbs(room.take(count * static_cast<std::size_t>(n))) {}

  mp_limb_t* operator[](unsigned long k) const {
    return limbs + (k - 1) * static_cast<std::size_t>(n);
  }

  /// How many limbs in front of u^k are 0 for certain.
  mp_size_t zeros(unsigned long k) const {
    return std::min(n, static_cast<mp_size_t>(k * step / GMP_NUMB_BITS));
  }

  /// u = x^2/4^halvings, cut off. Requires: 2n + 3 limbs of scratch.
  void set_square(mpz_srcptr x, unsigned long halvings, mp_limb_t* scratch) {
    auto const size = std::min(static_cast<mp_size_t>(mpz_size(x)), n + 1);
    std::fill_n(scratch, 2 * n + 3, 0);
    mpn_sqr(scratch, mpz_limbs_read(x), size);
    auto const whole = static_cast<mp_size_t>(2 * halvings / GMP_NUMB_BITS);
    unsigned const bits = 2 * halvings % GMP_NUMB_BITS;
    mp_limb_t* const square = scratch + n + whole;
    mp_size_t const left = n + 3 - whole;
    if (bits != 0) mpn_rshift(square, square, left, bits);
    std::fill_n(std::copy_n(square, std::min(left, n), (*this)[1]), n - std::min(left, n), 0);
  }

  /// u^k, from those before it. Requires: 2n limbs of scratch.
  void set_product(unsigned long k, mp_limb_t* scratch) {
    work::poll_products(n);
    unsigned long const i = k / 2;
    mp_size_t const size = n - zeros(i);
    mp_size_t const other_size = n - zeros(k - i);
    mp_size_t const kept = std::max(size + other_size - n, mp_size_t{0});
    if (kept > 0 && k % 2 == 0)
      mpn_sqr(scratch, (*this)[i], size);
    else if (kept > 0)
      mpn_mul(scratch, (*this)[i], size, (*this)[k - i], other_size);
    std::fill_n(std::copy_n(scratch + n, kept, (*this)[k]), n - kept, 0);
  }

 private:
  mp_size_t n;
  unsigned long step;
  mp_limb_t* limbs;
};

/// What the series at x/2^halvings takes.
struct Plan {
  Plan(mp_size_t limb_count, Chord kind)
      : n(limb_count), is_circular(kind == Chord::circular), halvings(chord_halvings(n)) {
    // After `count` terms those left out are less than 2^-(64 n).
    auto const precision = static_cast<unsigned long>(n) * GMP_NUMB_BITS;
    for (unsigned long bits = 0; bits < precision; ++count)
      bits += step() + static_cast<unsigned long>(std::bit_width(quotient(count - 1))) - 1;
    // Fewer than the square root of their number: products in a run are longer than those of runs.
    while ((run + 1) * (run + 1) <= count / 2 + 1) ++run;
  }

  /// u = (x/2^halvings)^2 < 2^-step.
  unsigned long step() const { return 2 * halvings - 2; }

  /// What u is divided by from term k to the next.
  static unsigned long quotient(unsigned long k) { return (2 * k + 3) * (2 * k + 4); }

  /// How many limbs a factor of u^k needs.
  mp_size_t length(unsigned long k) const {
    return std::max(n - static_cast<mp_size_t>(k * step() / GMP_NUMB_BITS), mp_size_t{1});
  }

  mp_size_t n;
  bool is_circular;
  unsigned long halvings;
  unsigned long count = 1;
  unsigned long run = 1;  // the highest power of u that is kept
};

/// sum = scale u^k ± sum, of `length` limbs and one in front of the point; u^0 is 1.
void next_term(mp_limb_t* sum, mp_size_t length, mp_limb_t scale, Powers const& power,
               unsigned long k, Plan const& plan) {
  if (plan.is_circular) mpn_neg(sum, sum, length + 1);
  if (k == 0) {
    sum[length] += scale;
  } else if (mp_size_t const size = length - power.zeros(k); size > 0) {
    mp_limb_t const carry = mpn_addmul_1(sum, power[k] + (plan.n - length), size, scale);
    mpn_add_1(sum + size, sum + size, length + 1 - size, carry);
  }
  // What is cut off may make it negative: it is not in truth.
  if (sum[length] >> (GMP_NUMB_BITS - 1) != 0) std::fill_n(sum, length + 1, 0);
}

/// sum = sum u^run, now with so many more limbs. Requires: 2n + 1 limbs of scratch.
void next_run(mp_limb_t* sum, mp_size_t length, mp_size_t longer, Powers const& power,
              Plan const& plan, mp_limb_t* scratch) {
  mp_size_t const zeros = std::min(power.zeros(plan.run), longer);
  mp_size_t const size = longer - zeros;
  mp_limb_t* const factor = power[plan.run] + (plan.n - longer);
  if (size > length + 1)
    mpn_mul(scratch, factor, size, sum, length + 1);
  else if (size > 0)
    mpn_mul(scratch, sum, length + 1, factor, size);
  mp_size_t const kept = size > 0 ? size + 1 : 0;
  std::fill_n(std::copy_n(scratch + length, kept, sum), longer + 1 - kept, 0);
}

/// R = 1 ± u/(3 4) (1 ± u/(5 6) (1 ± ...)), n limbs and one in front of the point, from the last
/// term on. In units of the power of u that its run starts with, the sum from there, times a scale
/// that makes the quotients integers, needs only the limbs that later factors leave of it.
void sum_series(mp_limb_t* sum, Powers const& power, Plan const& plan, mp_limb_t* scratch) {
  constexpr mp_limb_t most = mp_limb_t{1} << 62;
  mp_limb_t scale = 1;
  unsigned long start = (plan.count - 1) / plan.run * plan.run;
  mp_size_t length = plan.length(start);
  std::fill_n(sum, length + 1, 0);
  for (unsigned long k = plan.count; k-- > 0;) {
    if (k < start) {
      start -= plan.run;
      mp_size_t const longer = plan.length(start);
      work::poll_products(longer, 2);  // this one, and the passes of a run
      next_run(sum, length, longer, power, plan, scratch);
      length = longer;
    }
    if (scale > most / Plan::quotient(k)) {
      mpn_divrem_1(sum, 0, sum, length + 1, scale);
      scale = 1;
    }
    scale *= Plan::quotient(k);
    next_term(sum, length, scale, power, k - start, plan);
  }
  mpn_divrem_1(sum, 0, sum, length + 1, scale);
}

/// f = f (4 ± f). Requires: 2n + 3 limbs of scratch.
void double_argument(mp_limb_t* f, Plan const& plan, mp_limb_t* scratch) {
  work::poll_products(plan.n);
  mp_size_t const size = plan.n + (f[plan.n] != 0 ? 1 : 0);
  mpn_sqr(scratch, f, size);
  scratch[2 * size] = 0;
  mpn_lshift(f, f, plan.n + 1, 2);
  if (plan.is_circular)
    mpn_sub_n(f, f, scratch + plan.n, plan.n + 1);
  else
    mpn_add_n(f, f, scratch + plan.n, plan.n + 1);
}

}  // namespace

unsigned long chord_halvings(mp_size_t n) {
  // As measured: about in proportion to the cube root, with which the doublings grow as much as
  // the products of the series.
  unsigned long s = 4;
  while (s * s * s < 40 * static_cast<unsigned long>(n)) ++s;
  return s;
}

mp_size_t chord_limbs(unsigned long bits) {
  auto n = static_cast<mp_size_t>(bits / GMP_NUMB_BITS);
  do ++n;
  while (static_cast<unsigned long>(n) * GMP_NUMB_BITS < bits + chord_error_bits(n));
  return n;
}

void chord_squared(mpz_ptr out, mpz_srcptr x, mp_size_t n, Chord kind) {
  assert(mpz_sgn(x) >= 0 && mpz_sizeinbase(x, 2) <= static_cast<unsigned long>(n) * 64 + 1);
  if (mpz_sgn(x) == 0) {
    mpz_set_ui(out, 0);
    return;
  }
  Plan const plan(n, kind);
  auto const limbs = static_cast<std::size_t>(n);
  LimbBuffer room(plan.run * limbs + (limbs + 1) + (2 * limbs + 3));
  Powers power(n, plan.step(), plan.run, room);
  mp_limb_t* const f = room.take(limbs + 1);
  mp_limb_t* const scratch = room.take(2 * limbs + 3);

  power.set_square(x, plan.halvings, scratch);
  for (unsigned long k = 2; k <= plan.run; ++k) power.set_product(k, scratch);
  sum_series(f, power, plan, scratch);
  mpn_mul(scratch, f, n + 1, power[1], n);
  std::copy_n(scratch + n, n + 1, f);
  for (unsigned long i = 0; i < plan.halvings; ++i) double_argument(f, plan, scratch);

  std::copy_n(f, n + 1, mpz_limbs_write(out, n + 1));
  mpz_limbs_finish(out, n + 1);
}

}  // namespace zelk::real
