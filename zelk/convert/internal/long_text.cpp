#include "zelk/convert/internal/long_text.h"

#include <cstddef>
#include <deque>
#include <string_view>

#include "zelk/work/poll.h"

namespace zelk::convert {

namespace {

/// So many digits are converted at once.
constexpr std::size_t most_at_once = 1 << 14;

/// 10^(most_at_once 2^i), as many as are asked for.
class Powers {
 public:
  mpz_srcptr operator[](unsigned i) {
    while (powers.size() <= i) {
      if (powers.empty()) {
        mpz_ui_pow_ui(powers.emplace_back(), 10, most_at_once);
        continue;
      }
      mpz_srcptr const last = powers.back();
      work::poll(work::product(work::bits_of(last)));
      mpz_mul(powers.emplace_back(), last, last);
    }
    return powers[i];
  }

 private:
  std::deque<Integer> powers;  // whose elements stay where they are
};

void append_at_once(std::string& text, mpz_srcptr n) {
  auto const start = text.size();
  text.resize(start + mpz_sizeinbase(n, 10) + 2);  // a sign and the terminating NUL
  mpz_get_str(text.data() + start, 10, n);
  text.resize(text.find('\0', start));
}

/// An n >= 0 with at most most_at_once 2^level digits; `padded` to that length.
void append_halves(std::string& text, mpz_srcptr n, unsigned level, bool padded, Powers& powers) {
  if (level == 0) {
    auto const start = text.size();
    append_at_once(text, n);
    if (padded) text.insert(start, most_at_once - (text.size() - start), '0');
    return;
  }
  Integer high, low;
  work::poll(work::division(work::bits_of(n) / 2));
  mpz_tdiv_qr(high, low, n, powers[level - 1]);
  bool const has_high = padded || mpz_sgn(high.get()) != 0;
  if (has_high) append_halves(text, high, level - 1, padded, powers);
  append_halves(text, low, level - 1, has_high, powers);
}

/// How often so many digits are halved.
unsigned level_for(std::size_t digits) {
  unsigned level = 0;
  while (digits > most_at_once << level) ++level;
  return level;
}

void assign_halves(Integer& n, std::string_view digits, Powers& powers) {
  if (digits.size() <= most_at_once) return assign_digits(n, std::string(digits));
  unsigned const level = level_for(digits.size());
  auto const low_count = most_at_once << (level - 1);
  Integer low;
  assign_halves(n, digits.substr(0, digits.size() - low_count), powers);
  assign_halves(low, digits.substr(digits.size() - low_count), powers);
  mpz_srcptr const power = powers[level - 1];
  work::poll(work::product(work::bits_of(power)));
  mpz_mul(n, n, power);
  mpz_add(n, n, low);
}

}  // namespace

void append_digits(std::string& text, mpz_srcptr n) {
  if (mpz_size(n) <= most_at_once / 20) return append_at_once(text, n);  // a limb has 19.3 digits
  unsigned const level = level_for(mpz_sizeinbase(n, 10));
  if (mpz_sgn(n) < 0) text += '-';
  Integer magnitude;
  mpz_abs(magnitude, n);
  Powers powers;
  append_halves(text, magnitude, level, false, powers);
}

void assign_digits(Integer& n, std::string const& digits) {
  if (digits.size() <= most_at_once) {
    mpz_set_str(n, digits.c_str(), 10);
    return;
  }
  Powers powers;
  assign_halves(n, digits, powers);
}

}  // namespace zelk::convert
