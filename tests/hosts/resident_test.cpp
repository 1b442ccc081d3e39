#include "tests/hosts/resident.h"

static zelk::host::Resident resident;

int main() {
  for (int i = 0; i < 10; ++i) resident.work();
  // Neither the hosts nor the library have entered a wrong gcd.
  for (long a = 0; a <= zelk::gcd_cache_limit; ++a)
    for (long b = 0; b <= zelk::gcd_cache_limit; ++b)
      zelk::host::require(zelk::gcd_cache[a][b] == 0 || zelk::gcd_cache[a][b] == std::gcd(a, b));
}
