#pragma once

#include <gmp.h>

#include "zelk/numbers/q_number.h"

namespace zelk::detail {

/// Whether this thread's scratch integers will be given back when it ends.
extern constinit thread_local bool is_scratch_armed;

/// Sees to it.
[[gnu::noinline, gnu::cold]] void arm_scratch();

/// This thread's scratch integers, for whoever is going to write to them.
inline mpz_t (&scratch())[4] {
  if (!is_scratch_armed) [[unlikely]]
    arm_scratch();
  return QNumber::gmp_tmp;
}

}  // namespace zelk::detail
