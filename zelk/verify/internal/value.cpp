#include "zelk/verify/internal/value.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "zelk/numbers/functions.h"
#include "zelk/verify/internal/budget.h"

namespace zelk::verify {

namespace {

constexpr long most_magnitude = 40;

Value rounded_outward(Value const& x, long bits) {
  long const drop = std::max(x.high.bits() - bits, 0L);
  return {x.low >> drop, ceil_shift(x.high, drop), x.e - drop};
}

Value inverse(Value const& x, long bits) {
  need(x.low > 0, "too few bits");
  Whole const unit = Whole(1) << 2 * bits;
  return {unit / x.high, ceil_quotient(unit, x.low), 2 * bits - x.e};
}

/// m^k, rounded to `bits` bits after each step.
Value integer_power(Whole const& m, long k, long bits) {
  Value power{1, 1, 0};
  for (int i = static_cast<int>(std::bit_width(static_cast<unsigned long>(k))) - 1; i >= 0; --i) {
    power = {power.low * power.low, power.high * power.high, 2 * power.e};
    if ((k >> i) % 2 != 0) power = {power.low * m, power.high * m, power.e};
    power = rounded_outward(power, bits);
  }
  return power;
}

/// Of v/2^bits >= 0, which is known within `error`: by atan v = 2 atan(v/(1 + sqrt(1 + v^2))), then
/// the alternating series.
Value atan_of(Whole v, Whole error, Effort const& effort) {
  auto const [halvings, terms, bits] = effort;
  Whole const one = Whole(1) << bits;
  for (long i = 0; i < halvings; ++i) {
    v = (v << bits) / (one + square_root((one << bits) + v * v));
    error = (error >> 1) + 2;
  }
  need(v << 1 <= one, "too few halvings");
  Whole const square = v * v >> bits;
  Whole term = v, total;
  for (long k = 0; k < terms; ++k) {
    Whole const part = term / Whole(2 * k + 1);
    total = k % 2 != 0 ? total - part : total + part;
    term = term * square >> bits;
  }
  error = error + Whole(3 * terms + 2) + term;
  return {total - error, total + error, bits - halvings};
}

/// (e^x + sign e^-x)/2 for x >= 0.
Value halves(QNumber const& x, int sign, Effort const& effort) {
  long const bits = effort.bits + 2;
  auto const [low, high, e] = exp_at(x, effort);
  Value other = inverse({low, high, e}, bits);
  if (sign < 0) other = opposite(other);
  long const f = other.e, common = std::max(e, f);
  need(std::abs(e - f) <= most_bits, "too great a number");
  return {(low << (common - e)) + (other.low << (common - f)),
          (high << (common - e)) + (other.high << (common - f)), common + 1};
}

}  // namespace

Value opposite(Value const& x) { return {-x.high, -x.low, x.e}; }

bool is_ordered(Whole const& a, long e, Whole const& b, long f) {
  if (a.sign() <= 0 || b.sign() <= 0)
    return a.sign() < 0 && b.sign() < 0 ? is_ordered(-b, f, -a, e) : a <= b;
  if (a.bits() - e != b.bits() - f) return a.bits() - e < b.bits() - f;
  return a << std::max(f - e, 0L) <= b << std::max(e - f, 0L);
}

bool powers_are_ordered(QNumber const& x, long i, QNumber const& y, long j, long bits) {
  if (i < 0) return powers_are_ordered(x.inv(), -i, y, j, bits);
  if (j < 0) return powers_are_ordered(x, i, y.inv(), -j, bits);
  auto const x_above = integer_power(above(x), i, bits), x_below = integer_power(below(x), i, bits);
  auto const y_above = integer_power(above(y), j, bits), y_below = integer_power(below(y), j, bits);
  return is_ordered(x_above.high * y_below.high, x_above.e + y_below.e, y_above.low * x_below.low,
                    y_above.e + x_below.e);
}

Value pi_machin(long terms, long bits) {
  Whole fifths = (Whole(16) << bits) / 5, others = (Whole(4) << bits) / 239, total;
  for (long k = 0; k < terms; ++k) {
    Whole const term = (fifths - others) / (2 * k + 1);
    total = k % 2 != 0 ? total - term : total + term;
    fifths = std::move(fifths) / 25;
    others = std::move(others) / 57121;
  }
  Whole const error = fifths + (3 * terms + 2);
  return {total - error, total + error, bits};
}

/// Taylor's series at |x|/2^halvings, squared as often.
Value exp_at(QNumber const& x, Effort const& effort) {
  auto const [halvings, terms, bits] = effort;
  if (x.is_zero()) return {1, 1, 0};
  Whole const n = magnitude_of(above(x)), d = below(x);
  need(n.bits() - d.bits() < most_magnitude, "too great a number");
  Whole const y = (n << bits) / (d << halvings), one = Whole(1) << bits;
  need(y << 1 <= one, "too few halvings");
  Whole term = one, total = one;
  for (long k = 1; k <= terms; ++k) {
    term = (term * y >> bits) / k;
    total = std::move(total) + term;
  }
  Value value{total, total + term + (2 * terms + 4), bits};
  for (long i = 0; i < halvings; ++i)
    value =
        rounded_outward({value.low * value.low, value.high * value.high, 2 * value.e}, bits + 2);
  return x.sign() > 0 ? value : inverse(value, bits + 2);
}

Turned turned(QNumber const& x, QNumber const& turns, QNumber const& pi_below,
              QNumber const& pi_above, Effort const& effort) {
  auto const [halvings, terms, bits] = effort;
  Whole const one = Whole(1) << bits;
  if (x.is_zero() && turns.is_zero()) return {{0, 0, bits}, {one, one, bits}};
  auto const scaled = [&](QNumber const& pi) { return (x - turns * pi / 2) * one.to_number(); };
  auto const &more = turns.sign() < 0 ? pi_below : pi_above,
             &less = turns.sign() < 0 ? pi_above : pi_below;
  Whole const low = above(floor(scaled(more))), high = above(ceil(scaled(less)));
  need(-(one << 1) <= low && high <= one << 1, "wrong number of quarter turns");

  Whole const y = magnitude_of(low) >> halvings;
  Whole term = one, cosine = one, sine;
  for (long k = 1; k <= terms; ++k) {
    term = (term * y >> bits) / k;
    Whole& sum = k % 2 != 0 ? sine : cosine;
    sum = k % 4 < 2 ? sum + term : sum - term;
  }
  Whole error = term + (3 * terms + 4);
  for (long i = 0; i < halvings; ++i) {
    Whole const doubled = sine * cosine >> (bits - 1);
    cosine = (cosine * cosine - sine * sine) >> bits;
    sine = doubled;
    error = error * 3 + 2;
  }
  need(error << 4 <= one, "too few bits");
  if (low.sign() < 0) sine = -sine;
  error = error + high - low;
  auto const around = [&, b = bits](Whole const& mid) {
    return Value{std::max(mid, error) - error, std::min(mid + error, one), b};
  };
  Value const s = around(sine), c = around(cosine);
  long const quarter = above(turns - 4 * floor(turns / 4)).to_long();
  if (quarter == 0) return {s, c};
  if (quarter == 1) return {c, opposite(s)};
  if (quarter == 2) return {opposite(s), opposite(c)};
  return {opposite(c), s};
}

Value tan_of(Turned const& x) {
  if (x.cosine.high.sign() <= 0 && x.cosine.low.sign() < 0)
    return tan_of({opposite(x.sine), opposite(x.cosine)});
  auto const& [low, high, bits] = x.sine;
  auto const &least = x.cosine.low, &greatest = x.cosine.high;
  need(least.sign() > 0, "too few bits");
  return {(low << bits) / (low.sign() >= 0 ? greatest : least),
          ceil_quotient(high << bits, high.sign() >= 0 ? least : greatest), bits};
}

Value atan_at(QNumber const& x, Effort const& effort) {
  if (x.is_zero()) return {0, 0, 0};
  return atan_of((above(x) << effort.bits) / below(x), 1, effort);
}

/// 2 atan(x/(1 + sqrt(1 - x^2))).
Value asin_at(QNumber const& x, Effort const& effort) {
  need(!(1 < x), "an arc sine beyond 1");
  if (x.is_zero()) return {0, 0, 0};
  Whole const p = above(x), q = below(x);
  long const bits = effort.bits;
  Whole const cosine = square_root(((q * q - p * p) << 2 * bits) / (q * q));
  auto value = atan_of((p << 2 * bits) / (q * ((Whole(1) << bits) + cosine)), 2, effort);
  value.e -= 1;
  return value;
}

/// 4 atan(sqrt(1 - x)/(sqrt(1 + x) + sqrt 2)).
Value acos_at(QNumber const& x, Effort const& effort) {
  need(!(1 < abs(x)), "an arc cosine beyond 1");
  if (x == 1) return {0, 0, 0};
  Whole const p = above(x), q = below(x);
  auto const root_over = [&](Whole const& n) { return square_root((n << 2 * effort.bits) / q); };
  auto value = atan_of((root_over(q - p) << effort.bits) / (root_over(q + p) + root_over(q << 1)),
                       4, effort);
  value.low = std::max(value.low, Whole());
  value.e -= 2;
  return value;
}

Value sinh_at(QNumber const& x, Effort const& effort) { return halves(x, -1, effort); }
Value cosh_at(QNumber const& x, Effort const& effort) { return halves(x, 1, effort); }

/// (1 - y)/(1 + y) with y = e^(-2x).
Value tanh_at(QNumber const& x, Effort const& effort) {
  long const bits = effort.bits;
  auto const [low, high, e] = exp_at(-2 * x, effort);
  if (x.is_zero()) return {0, 0, 0};
  Whole const one = Whole(1) << bits;
  Whole const least = (low << bits) >> e, greatest = ceil_shift(high << bits, e);
  return {((one - greatest) << bits) / (one + greatest),
          ceil_quotient((one - least) << bits, one + least), bits};
}

}  // namespace zelk::verify
