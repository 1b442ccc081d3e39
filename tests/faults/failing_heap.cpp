#include "tests/faults/failing_heap.h"

#include <cstddef>
#include <new>
#include <utility>

// The linker's --wrap sends the `malloc` and `free` of statically linked code to the functions
// named __wrap_*, and offers the genuine ones as __real_*. Shared libraries, GMP among them, are
// not touched.
extern "C" {
void* __real_malloc(std::size_t size);
void __real_free(void* block);
}

namespace zelk::test::heap {
namespace {

long until_failure = 0;
bool failed = false;

void* allocate(std::size_t size, long& failures) {
  if (until_failure > 0 && --until_failure == 0) {
    failed = true;
    ++failures;
    return nullptr;
  }
  ++live_blocks;
  return __real_malloc(size == 0 ? 1 : size);
}

void release(void* block) {
  live_blocks -= block != nullptr;
  __real_free(block);
}

}  // namespace

bool fail_at(long nth) {
  until_failure = nth;
  return std::exchange(failed, false);
}

extern "C" {
void* __wrap_malloc(std::size_t size) { return allocate(size, failed_mallocs); }
void __wrap_free(void* block) { release(block); }
}

}  // namespace zelk::test::heap

namespace heap = zelk::test::heap;

void* operator new(std::size_t size) {
  if (void* const block = heap::allocate(size, heap::failed_news)) return block;
  throw std::bad_alloc();
}
void operator delete(void* block) noexcept { heap::release(block); }
void operator delete(void* block, std::size_t) noexcept { heap::release(block); }
