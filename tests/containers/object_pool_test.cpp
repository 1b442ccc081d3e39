#include "zelk/containers/object_pool.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <new>
#include <vector>

namespace zelk {
namespace {

TEST(ObjectPool, TakesChunksThatDoubleUpToALimit) {
  ObjectPool<long, false> pool;
  std::vector<int> runs;  // of slots that follow each other; before each chunk stands a link
  std::byte const* last = nullptr;
  for (int i = 0; i < 3 * 8192; ++i) {
    auto const* const slot = static_cast<std::byte const*>(pool.allocate());
    if (last == nullptr || slot != last + sizeof(long)) runs.push_back(0);
    ++runs.back();
    last = slot;
  }
  EXPECT_EQ(runs, (std::vector{16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 8192, 16}));
}

TEST(ObjectPool, HandsOutTheMostRecentlyFreedFirst) {
  using Owner = std::vector<std::shared_ptr<int>>;
  auto const shared = std::make_shared<int>();
  ObjectPool<Owner, false> pool;
  Owner* owners[3];
  for (auto& owner : owners) owner = ::new (pool.allocate()) Owner{shared};
  for (auto* const owner : owners) pool.free(owner);
  EXPECT_EQ(shared.use_count(), 1);
  for (void* const slot : {owners[2], owners[1], owners[0], owners[2] + 1})
    EXPECT_EQ(pool.allocate(), slot);
}

}  // namespace
}  // namespace zelk
