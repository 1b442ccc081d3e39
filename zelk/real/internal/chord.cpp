#include "zelk/real/internal/chord.h"

#include <algorithm>
#include <bit>
#include <cassert>

#include "zelk/real/internal/limb_buffer.h"

namespace zelk::real {

namespace {

/// The powers of u < 2^-step of which a series is made, from u^1 to u^count, each less than 2 units
/// below the true one. The limbs in front that are known to be 0 are left out.
class Powers {
 public:
  Powers(mp_size_t limb_count, unsigned long bits_each, unsigned long count, LimbBuffer& room)
      : n(limb_count), step(bits_each), limbs(room.take(count * static_cast<std::size_t>(n))) {}

  /// How many limbs in front of u^k are 0.
  mp_size_t zeros(unsigned long k) const {
    return std::min(n, static_cast<mp_size_t>(k * step / GMP_NUMB_BITS));
  }
  mp_limb_t* operator[](unsigned long k) const {
    return limbs + (k - 1) * static_cast<std::size_t>(n);
  }

  /// u^k from those before it. Requires: 2n limbs of scratch.
  void make(unsigned long k, mp_limb_t* scratch) {
    unsigned long const i = k / 2;
    mp_size_t const left = n - zeros(i);
    mp_size_t const right = n - zeros(k - i);
    mp_limb_t* const out = (*this)[k];
    // The product of integers over 2^(64 n): of its limbs the first n are dropped.
    if (left == 0 || right == 0) {
      std::fill_n(out, n, 0);
      return;
    }
    if (k % 2 == 0)
      mpn_sqr(scratch, (*this)[i], left);
    else
      mpn_mul(scratch, (*this)[i], left, (*this)[k - i], right);
    mp_size_t const kept = std::max(left + right - n, mp_size_t{0});
    std::copy_n(scratch + n, kept, out);
    std::fill(out + kept, out + n, 0);
  }

 private:
  mp_size_t n;
  unsigned long step;
  mp_limb_t* limbs;
};

/// How many terms 2 u^j/(2j + 2)! are not below 2^-(64 n), where u < 2^-step.
unsigned long count_terms(mp_size_t n, unsigned long step) {
  auto const precision = static_cast<unsigned long>(n) * GMP_NUMB_BITS;
  unsigned long count = 1;
  for (unsigned long bits = 0; bits < precision; ++count)
    bits +=
        step + static_cast<unsigned long>(std::bit_width((2 * count + 1) * (2 * count + 2))) - 1;
  return count;
}

unsigned long square_root(unsigned long n) {
  unsigned long root = 1;
  while ((root + 1) * (root + 1) <= n) ++root;
  return root;
}

}  // namespace

unsigned long chord_halvings(mp_size_t n) {
  unsigned long s = 3;
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
  assert(mpz_sgn(x) >= 0);
  bool const is_circular = kind == Chord::circular;
  unsigned long const halvings = chord_halvings(n);
  unsigned long const step = 2 * halvings - 2;  // u = (x/2^halvings)^2 < 2^-step
  unsigned long const count = count_terms(n, step);
  unsigned long const run = square_root(count / 2 + 1);
  auto const whole = static_cast<std::size_t>(n);

  LimbBuffer room(run * whole + (whole + 2) + (2 * whole + 4));
  Powers power(n, step, run, room);
  mp_limb_t* const sum = room.take(whole + 2);
  mp_limb_t* const scratch = room.take(2 * whole + 4);

  {
    mp_size_t const size = std::min(static_cast<mp_size_t>(mpz_size(x)), n + 1);
    if (size == 0) {
      mpz_set_ui(out, 0);
      return;
    }
    std::fill_n(scratch, 2 * n + 3, 0);
    mpn_sqr(scratch, mpz_limbs_read(x), size);
    // u = x^2 / 4^halvings
    unsigned long const places = 2 * halvings;
    mp_limb_t* const square = scratch + n + places / GMP_NUMB_BITS;
    mp_size_t const rest = n + 3 - static_cast<mp_size_t>(places / GMP_NUMB_BITS);
    unsigned const bits = places % GMP_NUMB_BITS;
    mp_limb_t* const u = power[1];
    std::fill_n(u, n, 0);
    if (bits != 0) mpn_rshift(square, square, rest, bits);
    std::copy_n(square, std::min(rest, n), u);
  }
  for (unsigned long k = 2; k <= run; ++k) power.make(k, scratch);

  // With R = 1 ± u/(3*4) (1 ± u/(5*6) (1 ± ...)), f = u R. From the last term on, `sum` is the part
  // of R from there, in units of its first power of u^run, times `scale`; it needs only the limbs
  // that are left when it has been multiplied by those.
  unsigned long block = (count - 1) / run;
  unsigned long index = (count - 1) % run;
  auto const length_at = [&](unsigned long b) {
    return std::max(n - static_cast<mp_size_t>(b * run * step / GMP_NUMB_BITS), mp_size_t{1});
  };
  mp_size_t length = length_at(block);
  std::fill_n(sum, length + 1, 0);
  constexpr mp_limb_t limit = mp_limb_t{1} << 62;
  mp_limb_t scale = 1;
  for (unsigned long k = count; k-- > 0;) {
    mp_limb_t const quotient = (2 * k + 3) * (2 * k + 4);
    if (scale > limit / quotient) {
      mpn_divrem_1(sum, 0, sum, length + 1, scale);
      scale = 1;
    }
    scale *= quotient;
    // sum = scale u^index ± sum
    if (index == 0) {
      if (is_circular) mpn_neg(sum, sum, length + 1);
      sum[length] += scale;
    } else {
      mp_size_t const zeros = power.zeros(index);
      mp_size_t const size = length - zeros;
      if (size > 0) {
        mp_limb_t const* const top = power[index] + (n - length);
        mp_limb_t* const above = sum + size;
        if (is_circular) {
          mp_limb_t const borrow = mpn_submul_1(sum, top, size, scale);
          mpn_sub_1(above, above, zeros + 1, borrow);
        } else {
          mp_limb_t const carry = mpn_addmul_1(sum, top, size, scale);
          mpn_add_1(above, above, zeros + 1, carry);
        }
      }
      if (is_circular) mpn_neg(sum, sum, length + 1);
    }
    // Not negative in truth.
    if (is_circular && sum[length] >> 63 != 0) std::fill_n(sum, length + 1, 0);
    if (index-- == 0 && k != 0) {
      --block;
      index = run - 1;
      mp_size_t const next = length_at(block);
      mp_size_t const zeros = std::min(power.zeros(run), next);
      mp_size_t const size = next - zeros;
      if (size == 0) {
        std::fill_n(sum, next + 1, 0);
      } else {
        mp_limb_t const* const top = power[run] + (n - next);
        if (length + 1 >= size)
          mpn_mul(scratch, sum, length + 1, top, size);
        else
          mpn_mul(scratch, top, size, sum, length + 1);
        std::copy_n(scratch + length, size + 1, sum);
        std::fill_n(sum + size + 1, zeros, 0);
      }
      length = next;
    }
  }
  mpn_divrem_1(sum, 0, sum, n + 1, scale);

  // f = u R
  mpn_mul(scratch, sum, n + 1, power[1], n);
  std::copy_n(scratch + n, n + 1, sum);
  for (unsigned long i = 0; i < halvings; ++i) {
    mp_size_t const size = n + (sum[n] != 0 ? 1 : 0);
    mpn_sqr(scratch, sum, size);
    scratch[2 * size] = 0;
    mpn_lshift(sum, sum, n + 1, 2);
    if (is_circular)
      mpn_sub_n(sum, sum, scratch + n, n + 1);
    else
      mpn_add_n(sum, sum, scratch + n, n + 1);
  }
  mp_limb_t* const result = mpz_limbs_write(out, n + 1);
  std::copy_n(sum, n + 1, result);
  mpz_limbs_finish(out, n + 1);
}

}  // namespace zelk::real
