#pragma once

namespace zelk::cli {

/// Does what the arguments say; 0, or the status to exit with.
/// Throws: std::system_error, std::bad_alloc.
int run_command_line(int argc, char const* const* argv);

}  // namespace zelk::cli
