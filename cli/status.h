#pragma once

namespace zelk::cli {

/// The exit statuses besides 0.
enum Status { not_answered = 1, wrong_usage = 2, no_input_or_output = 3 };

/// Writes the answers so far and the reason to end here; returns the status to exit with.
/// Allocates nothing.
int give_up(char const* reason, Status status) noexcept;

/// Tells the exception being handled; returns the status to exit with. Allocates nothing.
int give_up_by_exception() noexcept;

}  // namespace zelk::cli
