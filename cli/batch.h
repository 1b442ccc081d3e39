#pragma once

#include <string>

#include "cli/settings.h"

namespace zelk::cli {

struct BatchOptions {
  std::string file = "-";  // `-` is standard input
  bool fail_fast = false;
  bool stats = false;
};

/// Answers a query a line, an answer a line, in the order of the input; blank lines and what
/// follows a `#` do not count. A query that is not answered gets a diagnostic, with --json an
/// answer as well, and the rest goes on. Whether all were answered.
///
/// Throws: std::system_error when the input cannot be read or the output cannot be written.
bool run_batch(BatchOptions const& options, Settings const& settings);

}  // namespace zelk::cli
