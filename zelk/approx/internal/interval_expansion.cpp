#include "zelk/approx/internal/interval_expansion.h"

#include <algorithm>
#include <cassert>

#include "zelk/approx/internal/leading_part.h"
#include "zelk/work/poll.h"

namespace zelk::na {

namespace {

/// From here on the quotients of the leading half are found first, and taken off at once.
constexpr mp_bitcnt_t recursion_bits = 2000;

}  // namespace

bool IntervalExpansion::split() {
  assert(mpz_sgn(lower.d.get()) > 0 && mpz_sgn(upper.d.get()) > 0);
  Integer quotient, lower_rest, upper_rest;
  mpz_fdiv_qr(quotient, lower_rest, lower.n, lower.d);
  if (mpz_sgn(lower_rest.get()) == 0) return false;
  mpz_set(upper_rest, upper.n);
  mpz_submul(upper_rest, quotient, upper.d);
  if (mpz_cmp(upper_rest, upper.d) >= 0) return false;

  split_off(quotient, lower_rest, upper_rest);
  return true;
}

void IntervalExpansion::split_off(Integer& quotient, Integer& lower_rest, Integer& upper_rest) {
  prefix.append(quotient.get());
  if (terms != nullptr) terms->push_back(QNumber::from_lowest_terms({quotient, Integer(1UL)}));
  mpz_swap(lower.n, upper.d);
  mpz_swap(upper.n, lower.d);
  mpz_swap(lower.d, upper_rest);
  mpz_swap(upper.d, lower_rest);
}

void IntervalExpansion::split_all() {
  if (mpz_sgn(lower.n.get()) < 0 && !split()) return;  // from there on the ends are positive
  mp_bitcnt_t part = 0;
  for (;;) {
    mp_bitcnt_t const bits = std::max(bits_of(lower), bits_of(upper));
    // Two calls with half of the bits leave about half of the bits.
    if (bits < part + part / 4 || part == 0) part = bits / 2;
    poll_step(bits);
    bool const is_ahead = bits < recursion_bits ? split_leading_word() : split_leading(part);
    if (!is_ahead && !split()) return;
  }
}

/// The quotients of an interval around this one, whose ends fit in words.
bool IntervalExpansion::split_leading_word() {
  auto const matrix = common_quotients(leading_word(lower, downwards), leading_word(upper, upwards),
                                       [this](std::uint64_t quotient) {
                                         if (terms != nullptr)
                                           terms->emplace_back(static_cast<long>(quotient));
                                       });
  if (matrix.is_identity()) return false;
  take_off(matrix, lower, scratch);
  take_off(matrix, upper, scratch);
  append(matrix);
  return true;
}

/// The quotients of an interval around this one, whose ends have so many bits.
bool IntervalExpansion::split_leading(mp_bitcnt_t bits) {
  IntervalExpansion around;
  mp_bitcnt_t const lower_shift = set_leading(around.lower, lower, bits, downwards);
  mp_bitcnt_t const upper_shift = set_leading(around.upper, upper, bits, upwards);
  if (mpz_sgn(around.upper.d.get()) == 0) return false;
  around.terms = terms;
  around.split_all();
  if (around.prefix.is_identity()) return false;
  if (around.prefix.is_odd) around.lower.swap(around.upper);
  work::poll(12 * work::product(static_cast<double>(bits)));
  take_off(around.prefix, lower, around.lower, lower_shift, downwards, scratch);
  take_off(around.prefix, upper, around.upper, upper_shift, upwards, scratch);
  append(around.prefix);
  return true;
}

/// Appends the quotients that have been taken off both ends.
template <class Matrix>
void IntervalExpansion::append(Matrix const& matrix) {
  if (matrix.is_odd) lower.swap(upper);
  prefix.append(matrix, scratch);
}

}  // namespace zelk::na
