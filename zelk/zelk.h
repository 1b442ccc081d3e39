#pragma once

/// \mainpage zelk
///
/// Exact rational numbers, and rational enclosures of exp, sin, cos and pi.
///
/// True of the core, `zelk/zelk.h`, and said once:
/// - Every result is exact: a rational number, or two rationals with the true value between them.
/// - One thread at a time. All numbers share `gcd_cache` and `QNumber::gmp_tmp`, without locks.
/// - Answers come by value; only who looks at a cache holds a reference into it, for as long as
///   its owner lives. Aliased arguments are fine.
/// - `std::bad_alloc` is all that the core throws, when memory that it allocates itself cannot be
///   had: nothing leaks, and every object stays usable with the value it had. GMP's own digits are
///   the exception: GMP ends the process when it cannot get memory for them, and its manual
///   defines no recovery, so never install memory functions that throw.
/// - Requirements marked so are asserted in debug builds and not tested in release builds.
///
/// Above it `zelk/convert/` takes values in and out; what its functions refuse, they say.

#include "zelk/approx/power_series_approximator.h"
#include "zelk/approx/rational_approximator.h"
#include "zelk/containers/hash_map.h"
#include "zelk/containers/hasher.h"
#include "zelk/containers/hashtable.h"
#include "zelk/containers/memory_pool.h"
#include "zelk/containers/object_pool.h"
#include "zelk/numbers/q_number.h"
