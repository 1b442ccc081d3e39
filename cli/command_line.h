#pragma once

namespace zelk::cli {

/// The exit statuses besides 0.
enum Status { not_answered = 1, wrong_usage = 2, no_input_or_output = 3 };

/// Does what the arguments say; 0, or the status to exit with.
/// Throws: std::system_error, std::bad_alloc.
int run_command_line(int argc, char const* const* argv);

}  // namespace zelk::cli
