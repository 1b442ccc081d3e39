// The `zelk` command: reads its arguments or a file of queries, asks the library and prints.

#include "cli/command_line.h"
#include "cli/memory.h"
#include "cli/output.h"
#include "cli/status.h"

int main(int argc, char** argv) {
  using namespace zelk::cli;
  watch_allocations_of_gmp();
  share_scarce_addresses();
  hold_standard_files();
  catch_signals();
  try {
    int const status = run_command_line(argc, argv);
    flush_output();
    return status;
  } catch (...) {
    return give_up_by_exception();
  }
}
