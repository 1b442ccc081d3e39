#include <benchmark/benchmark.h>

#include <boost/version.hpp>

#include "benchmarks/peers.h"
#include "benchmarks/row.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::AddCustomContext("GMP", gmp_version);
  benchmark::AddCustomContext("FLINT", FLINT_VERSION);
  benchmark::AddCustomContext("Arb", arb_version);
  benchmark::AddCustomContext("Boost", BOOST_LIB_VERSION);
#ifdef __clang__
  benchmark::AddCustomContext("compiler", __VERSION__);
#else
  benchmark::AddCustomContext("compiler", "g++ " __VERSION__);
#endif
  zelk::bench::enter_arithmetic();
  zelk::bench::enter_whole();
  zelk::bench::enter_expansion();
  zelk::bench::enter_lookup();
  zelk::bench::enter_series();
  zelk::bench::enter_elementary();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
