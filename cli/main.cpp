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

// GMP cannot pass a failed allocation on to its caller: the command has to end where it happens.
void* or_exit(void* block) {
  if (block == nullptr) {
    complain("not enough memory");  // and the answers before it
    std::_Exit(not_answered);
  }
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
    complain("not enough memory");
    return not_answered;
  } catch (std::system_error const& error) {
    // Nobody reads on: no reason to complain.
    if (error.code().value() != EPIPE) complain(error.what());
    return no_input_or_output;
  } catch (std::exception const& error) {
    complain(error.what());
    return not_answered;
  }
}
