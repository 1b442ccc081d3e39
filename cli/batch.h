#pragma once

#include <string>

#include "cli/settings.h"

namespace zelk::cli {

struct BatchOptions {
  std::string file = "-";  // `-` is standard input
  bool fail_fast = false;
  bool stats = false;
  unsigned jobs = 1;  // threads that answer; 0 stands for one a core
};

/// Reads one query from each line and prints one answer on a line for it, in the order of the
/// input. Blank lines and what follows a `#` do not count. A query that is not answered gets a
/// diagnostic, with --json an object too, and the rest is still answered. Returns whether all were
/// answered. The same bytes for any number of jobs. Ends the command where workers are to be left
/// in the middle of their work.
///
/// Throws: std::system_error when the input cannot be read or the output cannot be written.
bool run_batch(BatchOptions const& options, Settings const& settings);

}  // namespace zelk::cli
