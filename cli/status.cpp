#include "cli/status.h"

#include <cerrno>
#include <cstring>
#include <exception>
#include <new>
#include <system_error>

#include "cli/output.h"
#include "cli/terminal.h"

namespace zelk::cli {

int give_up(char const* reason, Status status) noexcept {
  complain({reason});
  int const failure = try_to_flush_output();
  if (failure == 0) return status;
  if (failure != EPIPE) complain({"cannot write to standard output: ", std::strerror(failure)});
  return no_input_or_output;
}

int give_up_by_exception() noexcept {
  try {
    throw;
  } catch (std::bad_alloc const&) {
    return give_up("not enough memory", not_answered);
  } catch (std::system_error const& error) {
    // Whoever closed the pipe knows.
    if (error.code().value() != EPIPE) complain({error.what()});
    return no_input_or_output;
  } catch (std::exception const& error) {
    return give_up(error.what(), not_answered);
  }
}

}  // namespace zelk::cli
