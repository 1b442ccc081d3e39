#include <cxxabi.h>

#include "zelk/numbers/internal/scratch.h"

/// The library or program that this is linked into, as the C++ ABI names it.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" [[gnu::visibility("hidden")]] void* __dso_handle;

namespace zelk {

namespace {

static_assert(__GNU_MP_VERSION > 6 || (__GNU_MP_VERSION == 6 && __GNU_MP_VERSION_MINOR >= 2),
              "zelk needs GMP 6.2, since which an initialised integer owns nothing");

/// What an integer points at that owns nothing. Never written: GMP allocates before it writes.
constinit mp_limb_t no_limb = 0;

/// As `mpz_init` leaves an integer.
constexpr __mpz_struct initialised = {0, 0, &no_limb};

void give_back(void* /*unused*/) {
  detail::is_scratch_armed = false;
  QNumber::release_scratch();
}

}  // namespace

constinit thread_local mpz_t QNumber::gmp_tmp[4] = {
    {initialised}, {initialised}, {initialised}, {initialised}};

constinit thread_local bool detail::is_scratch_armed = false;

/// What a thread-local object with a destructor would do, but any number of times: a destructor
/// that runs after this one, and computes, arms it again.
void detail::arm_scratch() {
  is_scratch_armed = true;
  abi::__cxa_thread_atexit(give_back, nullptr, &__dso_handle);
}

void QNumber::release_scratch() noexcept {
  for (auto& scratch : gmp_tmp) {
    mpz_clear(scratch);
    *scratch = initialised;
  }
}

}  // namespace zelk
