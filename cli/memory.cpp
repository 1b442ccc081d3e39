#include "cli/memory.h"

#include <gmp.h>
#include <sys/resource.h>

#include <cstddef>
#include <cstdlib>
#include <exception>
#include <new>

#include "cli/status.h"
#include "cli/terminal.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace zelk::cli {
namespace {

void* with_reserve(void* block, std::size_t size) {
  auto* const reserve = Reserve::mine;
  for (;;) {
    // realloc leaves the block as it is when it fails.
    if (void* const grown = std::realloc(block, size)) return grown;
    if (reserve != nullptr && reserve->let_go()) continue;
    if (reserve != nullptr) reserve->give_up();
    end_without_memory();
  }
}

void* allocate(std::size_t size) { return with_reserve(nullptr, size); }
void* reallocate(void* block, std::size_t, std::size_t size) { return with_reserve(block, size); }

/// Objects made before `main`, and functions of other libraries that must not throw, cannot pass on
/// that there is no memory; neither can a throw for which there is none itself.
void end_by_terminate() {
  try {
    if (auto const exception = std::current_exception()) std::rethrow_exception(exception);
  } catch (std::bad_alloc const&) {
  } catch (...) {
    std::abort();
  }
  if (Reserve::mine != nullptr) Reserve::mine->give_up();
  end_without_memory();
}

/// Before the objects of all units are made.
[[gnu::constructor(101)]] void watch_terminate() { std::set_terminate(end_by_terminate); }

}  // namespace

void Reserve::give_up() { end_without_memory(); }

void end_without_memory() { end_now(give_up("not enough memory", not_answered)); }

void share_scarce_addresses() {
#ifdef __GLIBC__
  rlimit addresses;
  if (getrlimit(RLIMIT_AS, &addresses) == 0 && addresses.rlim_cur != RLIM_INFINITY)
    mallopt(M_ARENA_MAX, 1);
#endif
}

void watch_allocations_of_gmp() { mp_set_memory_functions(allocate, reallocate, nullptr); }

}  // namespace zelk::cli

/// To note what is to be done at the end of a thread, the system's own function takes memory, and
/// ends the program where there is none. The command has nothing to be done there: its workers give
/// back the library's scratch integers themselves.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" [[gnu::visibility("default")]] int __cxa_thread_atexit(void (*)(void*), void*, void*) {
  return 0;
}
