// Every step of a load made to fail: false, nothing changed, nothing left behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "state/module.h"
#include "tests/image/load_fixture.h"

namespace kelto {
namespace {

using test::FakePicture;
using test::Instance;
using testing::ElementsAre;

constexpr char kUnableMessage[] = "PanZoom HFX: Unable to allocate memory for image.\n";

// An odd width, so that the three images of a load have rows of 404, 304 and 408 bytes.
constexpr int16_t kWidth = 101, kHeight = 10;
constexpr uint64_t kDecoded = 404 * kHeight, kConverted = 304 * kHeight, kCached = 408 * kHeight;

class LoadFailure : public test::LoadingTest {
 protected:
  LoadFailure() {
    PutPicture("/pics/a.jpg", FakePicture::Flat(kWidth, kHeight, 1, 2, 3));
    instance.picture.imageWidth = 11;
    instance.picture.imageHeight = 12;
  }

  void ExpectFailure() {
    EXPECT_FALSE(LoadImage(instance, false));
    EXPECT_TRUE(instance.empty());
    EXPECT_EQ(instance.picture.imageWidth, 11u);
    EXPECT_EQ(instance.picture.imageHeight, 12u);
    EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
    EXPECT_EQ(iplxAllocatedBytes(), 0u);
    EXPECT_EQ(Module().cachedBytes, 0u);
    EXPECT_EQ(disk.openImporters, 0);
    EXPECT_EQ(disk.openWorlds, 0);
  }
};

TEST_F(LoadFailure, AnUndecodableFile) {
  disk.failing = "Open";
  ExpectFailure();
}

TEST_F(LoadFailure, BoundsThatCannotBeRead) {
  disk.failing = "GetNaturalBounds";
  ExpectFailure();
  EXPECT_THAT(disk.calls, ElementsAre("Open", "GetNaturalBounds", "Close"));
}

TEST_F(LoadFailure, AnOffscreenWorldThatCannotBeMade) {
  disk.failing = "NewGWorld";
  ExpectFailure();
  EXPECT_THAT(disk.calls, ElementsAre("Open", "GetNaturalBounds", "NewGWorld", "Close"));
}

TEST_F(LoadFailure, AWorldThatTheImporterRefuses) {
  disk.failing = "SetGWorld";
  ExpectFailure();
  EXPECT_THAT(disk.calls, ElementsAre("Open", "GetNaturalBounds", "NewGWorld", "SetGWorld", "Close",
                                      "Dispose"));
}

TEST_F(LoadFailure, APictureThatCannotBeDrawn) {
  disk.failing = "Draw";
  ExpectFailure();
  EXPECT_THAT(disk.calls, ElementsAre("Open", "GetNaturalBounds", "NewGWorld", "SetGWorld", "Draw",
                                      "Close", "Dispose"));
}

TEST_F(LoadFailure, AnImporterThatFailsToClose) {
  disk.failing = "Close";
  ExpectFailure();
}

TEST_F(LoadFailure, BoundsWithoutAnArea) {
  disk.files["/pics/a.jpg"].bounds = {5, 5, 5, 50};
  ExpectFailure();
  EXPECT_TRUE(console.empty());
}

TEST_F(LoadFailure, MemoryRunningOutForTheDecodeTargetPrintsTheReclaimMessageOnly) {
  iplxSetMemoryLimit(kDecoded - 1);
  ExpectFailure();
  EXPECT_THAT(console, ElementsAre(ReclaimMessage(instance)));
}

TEST_F(LoadFailure, MemoryRunningOutForTheConvertedImagePrintsBothMessages) {
  iplxSetMemoryLimit(kDecoded + kConverted - 1);
  ExpectFailure();
  EXPECT_THAT(console, ElementsAre(ReclaimMessage(instance), kUnableMessage));
}

TEST_F(LoadFailure, MemoryRunningOutForTheCachedImagePrintsBothMessages) {
  static_assert(kCached > kDecoded);
  iplxSetMemoryLimit(kConverted + kCached - 1);
  ExpectFailure();
  EXPECT_THAT(console, ElementsAre(ReclaimMessage(instance), kUnableMessage));
}

TEST_F(LoadFailure, EnoughMemoryForEveryStepIsNoFailure) {
  iplxSetMemoryLimit(kConverted + kCached);
  EXPECT_TRUE(LoadImage(instance, false));
}

TEST_F(LoadFailure, AnExceptionFromBelowEndsTheLoadQuietly) {
  disk.whileDrawing = [] { throw std::runtime_error("codec"); };
  EXPECT_FALSE(LoadImage(instance, false));
  EXPECT_EQ(iplxAllocatedBytes(), 0u);
  EXPECT_EQ(disk.openImporters, 0);
  disk.whileDrawing = nullptr;
}

TEST_F(LoadFailure, MemoryIsTakenBackFromOtherInstancesFirst) {
  Instance other;
  other.Hold(100, 100);
  iplxSetMemoryLimit(100 * 100 * 4 + 10);
  EXPECT_TRUE(LoadImage(instance, false));
  EXPECT_TRUE(other.empty());
  EXPECT_TRUE(console.empty());
  EXPECT_EQ(Module().cachedBytes, kCached);
}

TEST_F(LoadFailure, AFailedLoadDoesNotMakeTheNextOneFail) {
  iplxSetMemoryLimit(kDecoded);
  EXPECT_FALSE(LoadImage(instance, false));
  iplxSetMemoryLimit(0);
  EXPECT_TRUE(LoadImage(instance, false));
}

}  // namespace
}  // namespace kelto
