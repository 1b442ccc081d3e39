// The `zelk` command: reads its arguments or a file of queries, asks the library and prints.

#include <gmp.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <system_error>

#include "cli/command_line.h"
#include "cli/terminal.h"

namespace {

using namespace zelk::cli;

/// Complains, after the answers so far, and returns the status to exit with.
int give_up(char const* reason, int status) {
  complain(reason);
  try {
    flush_output();
    return status;
  } catch (std::system_error const& error) {
    if (error.code().value() != EPIPE) complain(error.what());
    return no_input_or_output;
  }
}

// GMP cannot pass a failed allocation on to its caller: the command has to end where it happens.
void* or_exit(void* block) {
  if (block == nullptr) std::_Exit(give_up("not enough memory", not_answered));
  return block;
}
void* allocate(std::size_t size) { return or_exit(std::malloc(size)); }
void* reallocate(void* block, std::size_t, std::size_t size) {
  return or_exit(std::realloc(block, size));
}

}  // namespace

int main(int argc, char** argv) {
  mp_set_memory_functions(allocate, reallocate, nullptr);
  try {
    int const status = run_command_line(argc, argv);
    flush_output();
    return status;
  } catch (std::bad_alloc const&) {
    return give_up("not enough memory", not_answered);
  } catch (std::system_error const& error) {
    // Nobody reads on: no reason to complain.
    if (error.code().value() != EPIPE) complain(error.what());
    return no_input_or_output;
  } catch (std::exception const& error) {
    return give_up(error.what(), not_answered);
  }
}
