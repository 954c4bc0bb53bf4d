// The order in which a deleted instance takes its leave.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "image/cache.h"
#include "state/pool.h"
#include "tests/support/instance.h"

namespace kelto {
namespace {

using test::Instance;

/// A pool that sees whether an instance is still registered when its images are given back.
class WatchingPool final : public BufferPool {
 public:
  void Release(IplImage*) override {
    ++released;
    const auto& registry = InstanceRegistry();
    registered = std::find(registry.begin(), registry.end(), watched) != registry.end();
  }
  const PanZoomState* watched = nullptr;
  int released = 0;
  bool registered = false;
};

TEST(Destruction, AnInstanceLeavesTheRegistryBeforeItsImagesGo) {
  WatchingPool pool;
  auto instance = std::make_unique<Instance>();
  pool.watched = instance.get();
  instance->picture.workImages[0].reset(NewCachedImageHeader(8, 8));
  ASSERT_NE(instance->picture.workImages[0], nullptr);
  instance->picture.workImages[0]->imageId = static_cast<BufferPool*>(&pool);
  instance.reset();
  EXPECT_EQ(pool.released, 1);
  EXPECT_FALSE(pool.registered) << "nobody can reach it any more";
}

}  // namespace
}  // namespace kelto
