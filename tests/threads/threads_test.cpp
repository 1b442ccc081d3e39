#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "zelk/convert/text.h"
#include "zelk/real/elementary_functions.h"
#include "zelk/zelk.h"

namespace zelk {
namespace {

using convert::to_string;

std::atomic<long> gmp_blocks;

void* allocate(std::size_t size) { return ++gmp_blocks, std::malloc(size); }
void* reallocate(void* block, std::size_t, std::size_t size) { return std::realloc(block, size); }
void release(void* block, std::size_t) { --gmp_blocks, std::free(block); }
auto const counted = (mp_set_memory_functions(allocate, reallocate, release), true);

QNumber harmonic(long n) {
  QNumber sum;
  for (long i = 1; i <= n; ++i) sum += QNumber(1, i);
  return sum;
}

/// Answers to questions of all kinds, asked of objects of its own.
std::string work(unsigned seed) {
  na::RationalApproximator rational;
  na::PowerSeriesApproximator series(rational);
  real::ElementaryFunctions functions;
  std::string answers = to_string(harmonic(300 + seed));
  for (unsigned prec = 1; prec < 12; ++prec) {
    QNumber const x(seed + prec, 7 + prec);
    auto const [pi_low, pi_high] = series.machin_pi_bounds(prec);
    auto const [exp_low, exp_high] = series.maclaurin_exp_bounds(x, 4 * prec);
    auto const [sin_low, sin_high] = series.maclaurin_sin_bounds(x, 4 * prec);
    QNumber const mixed = pi_low * exp_high - sin_low / sin_high;
    answers += ' ' + to_string(rational.approx(mixed, prec, 1)) + ' ' + to_string(pow(mixed, 3));
    answers += exp_low < pi_high ? '<' : '>';
    answers += to_string(functions.tan(x, 5 * prec).lower());
    answers += to_string(functions.pow(x, mixed, 5 * prec).lower());
  }
  return answers;
}

template <class Act>
void on_threads(unsigned count, Act act) {
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < count; ++i) threads.emplace_back(act, i);
  for (auto& thread : threads) thread.join();
}

TEST(Threads, GiveTheAnswersOfOne) {
  std::vector<std::string> alone, together(8);
  // From an empty table, as fast as they can: the first to need a gcd enters it.
  on_threads(8, [&](unsigned i) { together[i] = work(i / 2); });
  for (unsigned i = 0; i < 8; ++i) alone.push_back(work(i / 2));
  EXPECT_EQ(together, alone);
}

TEST(Threads, GiveTheirScratchBack) {
  long const before = gmp_blocks;
  for (int i = 0; i < 100; ++i) on_threads(1, [](unsigned) { harmonic(100); });
  EXPECT_EQ(gmp_blocks, before);
  on_threads(1, [&](unsigned) {
    harmonic(100);
    EXPECT_GT(gmp_blocks, before);
    auto const held = mallinfo2().uordblks;  // the clean-up is arranged once, not for each number
    harmonic(5000);
    EXPECT_LT(mallinfo2().uordblks, held + 300'000);
    QNumber::release_scratch();
    EXPECT_EQ(gmp_blocks, before);
    EXPECT_EQ(to_string(harmonic(5)), "137/60");
    EXPECT_EQ(harmonic(60) - harmonic(59), QNumber(1, 60));
  });
  EXPECT_EQ(gmp_blocks, before);
}

/// Made before its thread computes anything, so that its destructor runs after the scratch integers
/// of the thread were given back.
struct LastWord {
  ~LastWord() { *heard = to_string(harmonic(60) - harmonic(59)); }
  std::string* heard = nullptr;
};
thread_local LastWord last_word;

TEST(Threads, ComputeInDestructorsOfTheirObjects) {
  long const before = gmp_blocks;
  std::string heard;
  on_threads(1, [&](unsigned) {
    last_word.heard = &heard;
    harmonic(100);
  });
  EXPECT_EQ(heard, "1/60");
  EXPECT_EQ(gmp_blocks, before);
}

TEST(Threads, BeginWithScratchAsGmpInitialisesIt) {
  mpz_t fresh;
  mpz_init(fresh);
  on_threads(1, [&](unsigned) {
    for (auto const& scratch : QNumber::gmp_tmp) {
      EXPECT_EQ(scratch->_mp_alloc, fresh->_mp_alloc);
      EXPECT_EQ(scratch->_mp_size, fresh->_mp_size);
      EXPECT_NE(scratch->_mp_d, nullptr);
    }
  });
  mpz_clear(fresh);
}

unsigned long ask_plugin(char const* path, long n) {
  // The loader has a lock of its own, which ThreadSanitizer does not see.
  static std::mutex loading;
  std::unique_lock lock(loading);
  void* const plugin = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (plugin == nullptr) return 0;
  auto* const ask = reinterpret_cast<unsigned long (*)(long)>(dlsym(plugin, "harmonic"));
  lock.unlock();
  auto const answer = ask(n);
  lock.lock();
  dlclose(plugin);
  return answer;
}

TEST(Threads, LoadAndUnloadPlugins) {
  auto const expected = mpz_sizeinbase(harmonic(300).numerator(), 2);
  on_threads(2, [&](unsigned i) {
    EXPECT_EQ(ask_plugin(i == 0 ? FIRST_PLUGIN : SECOND_PLUGIN, 300), expected);
  });
  ask_plugin(FIRST_PLUGIN, 300);
  long const before = gmp_blocks;
  for (int i = 0; i < 300; ++i) ASSERT_EQ(ask_plugin(FIRST_PLUGIN, 300), expected);
  EXPECT_EQ(gmp_blocks, before);
}

}  // namespace
}  // namespace zelk
