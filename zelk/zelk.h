#pragma once

/// \mainpage zelk
///
/// Exact rational numbers, and rational enclosures of exp, sin, cos and pi.
///
/// True of the core, `zelk/zelk.h`, and said once:
/// - Every result is exact: a rational number, or two rationals with the true value between them.
/// - Distinct objects may be used by distinct threads at the same time, one object by one thread at
///   a time. A `PowerSeriesApproximator` and the `RationalApproximator` it refers to count as one
///   object. An object that nobody changes may be read by any number of threads.
/// - Answers come by value; only who looks at a cache holds a reference into it, for as long as
///   its owner lives. Aliased arguments are fine.
/// - A zero denominator, division by zero and the inverse of zero throw `DivisionByZero`, a
///   `std::domain_error`, before anything is written.
/// - When memory that the core allocates itself cannot be had, `std::bad_alloc` is thrown: nothing
///   leaks, and every object stays usable with the value it had. GMP's own digits are the
///   exception: GMP ends the process when it cannot get memory for them, and its manual defines no
///   recovery, so never install memory functions that throw.
/// - Other requirements, marked so, are asserted in debug builds and not tested in release builds.
///
/// Above it `zelk/convert/` takes values in and out; what its functions refuse, they say.

#include "zelk/approx/best.h"
#include "zelk/approx/convergents.h"
#include "zelk/approx/cosine.h"
#include "zelk/approx/power_series_approximator.h"
#include "zelk/approx/progress.h"
#include "zelk/approx/rational_approximator.h"
#include "zelk/approx/short_bounds.h"
#include "zelk/approx/simplest.h"
#include "zelk/containers/hash_map.h"
#include "zelk/containers/hasher.h"
#include "zelk/containers/hashtable.h"
#include "zelk/containers/memory_pool.h"
#include "zelk/containers/object_pool.h"
#include "zelk/containers/table_view.h"
#include "zelk/numbers/errors.h"
#include "zelk/numbers/functions.h"
#include "zelk/numbers/hash.h"
#include "zelk/numbers/q_number.h"
#include "zelk/version.h"
