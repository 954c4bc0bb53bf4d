#include "state/pool.h"

#include <gtest/gtest.h>

#include <vector>

#include "state/module.h"
#include "tests/image/instance.h"

namespace kelto {
namespace {

using test::Instance;

class Pool : public test::ImageTest {};

/// Records what it is asked to release.
class RecordingPool : public BufferPool {
 public:
  void Release(IplImage* image) override { released.push_back(image); }
  std::vector<IplImage*> released;
};

TEST_F(Pool, ReleaseOfTheCachePoolSubtractsTheImageSizeAndFreesNothing) {
  Instance instance;
  IplImage* image = instance.Hold(10, 10);
  EXPECT_EQ(Module().cachedBytes, 400u);
  Module().cachePool.Release(image);
  EXPECT_EQ(Module().cachedBytes, 0u);
  EXPECT_EQ(iplxAllocatedBytes(), 400u);
  Module().cachedBytes += image->imageSize;
}

TEST_F(Pool, ReleaseImageAsksTheOwningPoolAndFreesAll) {
  RecordingPool pool;
  IplImage* image = NewCachedImageHeader(10, 10);
  iplAllocateImage(image, 0, 0);
  image->imageId = static_cast<BufferPool*>(&pool);
  ReleaseImage(image);
  EXPECT_EQ(pool.released, std::vector<IplImage*>{image});
  EXPECT_EQ(iplxAllocatedBytes(), 0u);
}

TEST_F(Pool, AnImageWithoutAPoolIsOnlyFreed) {
  IplImage* image = NewCachedImageHeader(10, 10);
  iplAllocateImage(image, 0, 0);
  ReleaseImage(image);
  EXPECT_EQ(iplxAllocatedBytes(), 0u);
  EXPECT_EQ(Module().cachedBytes, 0u);
}

TEST_F(Pool, AHeaderThatNeverGotPixelsLeavesTheAccountAlone) {
  ReleaseImage(NewCachedImageHeader(10, 10));
  EXPECT_EQ(Module().cachedBytes, 0u);
}

TEST_F(Pool, ReleasingNothingIsAllowed) {
  ReleaseImage(nullptr);
  EXPECT_EQ(Module().cachedBytes, 0u);
}

TEST_F(Pool, WorkingImagesAreReleasedFromLevelZeroToSeven) {
  RecordingPool pool;
  Instance instance;
  std::vector<IplImage*> expected;
  for (const int level : {7, 0, 3, 5, 1}) {
    IplImage* image = NewCachedImageHeader(4, 4);
    image->imageId = static_cast<BufferPool*>(&pool);
    instance.picture.workImages[level].reset(image);
  }
  for (const int level : {0, 1, 3, 5, 7})
    expected.push_back(instance.picture.workImages[level].get());
  ReleaseWorkImages(instance);
  EXPECT_EQ(pool.released, expected);
  EXPECT_TRUE(instance.empty());
}

}  // namespace
}  // namespace kelto
