#include "tests/fuzz/body.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  zelk::test::FUZZ_BODY({data, size});
  return 0;
}
