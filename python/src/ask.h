#pragma once

#include "cli/query.h"
#include "python/src/compute.h"
#include "python/src/limits.h"

namespace zelk::python {

/// What `find` returns, if what `estimate` says of the query is within the limits; other threads of
/// Python go on meanwhile. Every question comes this way, but for those of a `Solver`, and for
/// certificates, whose checker has limits of its own.
template <class Input, class Estimate, class Find>
auto ask(Input const& input, cli::Query const& query, Estimate const& estimate, Find const& find) {
  return compute(input, [&] {
    require_limits(query, estimate);
    return find();
  });
}

}  // namespace zelk::python
