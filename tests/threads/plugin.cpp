#include "zelk/zelk.h"

/// The number of bits in the numerator of 1 + 1/2 + ... + 1/n.
extern "C" [[gnu::visibility("default")]] unsigned long harmonic(long n) {
  zelk::QNumber sum;
  for (long i = 1; i <= n; ++i) sum += zelk::QNumber(1, i);
  return mpz_sizeinbase(sum.numerator(), 2);
}
