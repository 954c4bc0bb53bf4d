#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "state/module.h"
#include "tests/image/instance.h"

namespace kelto {
namespace {

using test::Instance;
using testing::ElementsAre;

constexpr uint32_t kImageBytes = 100 * 100 * 4;

/// AllocateImageData with one instance that wants an image and others that hold some.
class Allocation : public test::ImageTest {
 protected:
  IplImage* Allocate(PanZoomState& state) {
    IplImage* image = NewCachedImageHeader(100, 100);
    AllocateImageData(state, image);
    return image;
  }
};

TEST_F(Allocation, AnAllocatedImageBelongsToTheCachePoolAndIsCounted) {
  Instance instance;
  IplImage* image = Allocate(instance);
  EXPECT_NE(image->imageData, nullptr);
  EXPECT_EQ(image->imageId, static_cast<BufferPool*>(&Module().cachePool));
  EXPECT_EQ(Module().cachedBytes, kImageBytes);
  ReleaseImage(image);
  EXPECT_EQ(Module().cachedBytes, 0u);
}

TEST_F(Allocation, WithOneInstanceOnlyAFailurePrintsTheReclaimMessageAtOnce) {
  Instance only;
  IplImage* held = only.Hold(50, 50);
  iplxSetMemoryLimit(kImageBytes);
  IplImage* image = Allocate(only);
  EXPECT_THAT(console, ElementsAre(ReclaimMessage(only)));
  EXPECT_EQ(iplGetErrStatus(), IPL_StsNoMem) << "left for the caller";
  EXPECT_EQ(image->imageData, nullptr);
  EXPECT_EQ(image->imageId, nullptr);
  EXPECT_EQ(only.picture.workImages[0].get(), held);
  EXPECT_EQ(Module().cachedBytes, held->imageSize);
  ReleaseImage(image);
  iplSetErrStatus(IPL_StsOk);
}

TEST_F(Allocation, OtherInstancesAreEmptiedInOrderOfCreationAndNoFurtherThanNeeded) {
  Instance first, second, caller, third;
  first.Hold(50, 50);
  second.Hold(100, 99);
  second.Hold(10, 10, 4);
  IplImage* own = caller.Hold(50, 50);
  IplImage* spared = third.Hold(50, 50);
  // Room comes only once both the first and the second are gone.
  iplxSetMemoryLimit(own->imageSize + spared->imageSize + kImageBytes);
  IplImage* image = Allocate(caller);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
  EXPECT_NE(image->imageData, nullptr);
  EXPECT_TRUE(first.empty());
  EXPECT_TRUE(second.empty()) << "a whole instance at a time";
  EXPECT_EQ(caller.picture.workImages[0].get(), own);
  EXPECT_EQ(third.picture.workImages[0].get(), spared);
  EXPECT_TRUE(console.empty());
  EXPECT_EQ(Module().cachedBytes, own->imageSize + spared->imageSize + kImageBytes);
  ReleaseImage(image);
}

TEST_F(Allocation, AFailureAfterEmptyingEveryOtherInstanceIsToldOnce) {
  Instance first, caller, last;
  first.Hold(20, 20);
  last.Hold(20, 20);
  iplxSetMemoryLimit(kImageBytes - 1);
  IplImage* image = Allocate(caller);
  EXPECT_TRUE(first.empty());
  EXPECT_TRUE(last.empty());
  EXPECT_THAT(console, ElementsAre(ReclaimMessage(caller)));
  EXPECT_EQ(iplGetErrStatus(), IPL_StsNoMem);
  EXPECT_EQ(Module().cachedBytes, 0u);
  ReleaseImage(image);
  iplSetErrStatus(IPL_StsOk);
}

TEST_F(Allocation, TheErrorModeIsRestoredAfterSuccessAndAfterFailure) {
  Instance instance;
  iplSetErrMode(IPL_ErrModeParent);
  ReleaseImage(Allocate(instance));
  EXPECT_EQ(iplGetErrMode(), IPL_ErrModeParent);

  iplxSetMemoryLimit(1);
  testing::internal::CaptureStderr();
  ReleaseImage(Allocate(instance));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "silent while trying";
  EXPECT_EQ(iplGetErrMode(), IPL_ErrModeParent);
  iplSetErrMode(IPL_ErrModeSilent);
  iplSetErrStatus(IPL_StsOk);
}

}  // namespace
}  // namespace kelto
