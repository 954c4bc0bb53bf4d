#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "tests/runtime/ipl/fixture.h"

namespace kelto {
namespace {

using Memory = IplTest;

Image NewPixels(int32_t width, int32_t height) {
  Image image = NewHeader(4, "MSI", "MSI", IPL_ALIGN_QWORD, width, height);
  iplAllocateImage(image.get(), 0, 0);
  return image;
}

TEST_F(Memory, PixelsStartOnACacheLine) {
  for (int32_t width = 1; width < 40; ++width) {
    const Image image = NewPixels(width, 3);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(image->imageData) % 64, 0u);
    EXPECT_LE(image->imageDataOrigin, image->imageData);
  }
}

TEST_F(Memory, FillSetsEveryByteIncludingRowPadding) {
  const Image image = NewHeader(3, "YCr", "YCr", IPL_ALIGN_QWORD, 5, 4);
  iplAllocateImage(image.get(), 1, 0x5A);
  ASSERT_NE(image->imageData, nullptr);
  EXPECT_EQ(std::count(image->imageData, image->imageData + image->imageSize, 0x5A),
            static_cast<ptrdiff_t>(image->imageSize));
}

TEST_F(Memory, AllocatedBytesFollowEveryImage) {
  EXPECT_EQ(iplxAllocatedBytes(), 0u);
  Image first = NewPixels(10, 10);
  EXPECT_EQ(iplxAllocatedBytes(), 400u);
  const Image second = NewPixels(4, 5);
  EXPECT_EQ(iplxAllocatedBytes(), 480u);
  first.reset();
  EXPECT_EQ(iplxAllocatedBytes(), 80u);
}

#if defined(__GLIBC__)
TEST_F(Memory, ThereIsRoomForRowsAlignedToEightBytesThatIsNotCounted) {
  const Image image = NewHeader(4, "RGBA", "BGRA", IPL_ALIGN_DWORD, 101, 1000);
  iplAllocateImage(image.get(), 0, 0);
  const auto skipped = static_cast<size_t>(image->imageData - image->imageDataOrigin);
  EXPECT_GE(malloc_usable_size(image->imageDataOrigin), skipped + 408 * 1000);
  EXPECT_EQ(iplxAllocatedBytes(), 404u * 1000);
}
#endif

TEST_F(Memory, ImagesThatExchangedTheirPixelsCountAsBefore) {
  Image small = NewPixels(10, 10);
  const Image large = NewPixels(100, 100);
  std::swap(small->imageData, large->imageData);
  std::swap(small->imageDataOrigin, large->imageDataOrigin);
  small.reset();
  EXPECT_EQ(iplxAllocatedBytes(), 40000u);
}

TEST_F(Memory, CountedImagesTakeOfTheAccountAndHaveNoPixels) {
  Image first = NewPixels(10, 10);
  char* const pixels = first->imageData;
  const Image counted = NewHeader(4, "RGBA", "BGRA", IPL_ALIGN_DWORD, 20, 10);
  iplxCountImage(counted.get());
  EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
  EXPECT_EQ(counted->imageData, nullptr);
  EXPECT_EQ(iplxAllocatedBytes(), 1200u);
  iplxCountImage(counted.get());
  EXPECT_EQ(iplxAllocatedBytes(), 1200u) << "counted once";
  std::swap(first->imageData, counted->imageData);
  std::swap(first->imageDataOrigin, counted->imageDataOrigin);
  first.reset();
  EXPECT_EQ(iplxAllocatedBytes(), 800u);
  EXPECT_EQ(counted->imageData, pixels) << "freed with the image that has them now";
}

TEST_F(Memory, CountingStopsAtTheLimit) {
  const Image first = NewPixels(10, 10);
  const Image counted = NewHeader(4, "RGBA", "BGRA", IPL_ALIGN_DWORD, 20, 10);
  iplxSetMemoryLimit(1199);
  iplxCountImage(counted.get());
  EXPECT_EQ(iplGetErrStatus(), IPL_StsNoMem);
  EXPECT_EQ(iplxAllocatedBytes(), 400u);
  iplSetErrStatus(IPL_StsOk);
  iplxSetMemoryLimit(1200);
  iplxCountImage(counted.get());
  EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
}

TEST_F(Memory, AllocatingAgainReplacesThePixels) {
  const Image image = NewPixels(10, 10);
  iplAllocateImage(image.get(), 1, 1);
  EXPECT_EQ(iplxAllocatedBytes(), 400u);
}

TEST_F(Memory, ALimitRefusesWhatWouldPassItAndOnlyThat) {
  iplxSetMemoryLimit(500);
  const Image first = NewPixels(10, 10);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);

  const Image tooMuch = NewPixels(26, 1);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsNoMem);
  EXPECT_EQ(tooMuch->imageData, nullptr);
  EXPECT_EQ(iplxAllocatedBytes(), 400u);

  iplSetErrStatus(IPL_StsOk);
  const Image alsoTooMuch = NewPixels(25, 1);  // its row takes 104 bytes
  EXPECT_EQ(iplGetErrStatus(), IPL_StsNoMem);
  iplSetErrStatus(IPL_StsOk);
  const Image fits = NewPixels(5, 4);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
  EXPECT_EQ(iplxAllocatedBytes(), 496u);
}

TEST_F(Memory, ALimitOfZeroIsNone) {
  iplxSetMemoryLimit(1);
  iplxSetMemoryLimit(0);
  const Image image = NewPixels(100, 100);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
}

TEST_F(Memory, AFailedAllocationCanBeTriedAgain) {
  const Image image = NewHeader(4, "MSI", "MSI", IPL_ALIGN_QWORD, 10, 10);
  iplxSetMemoryLimit(100);
  iplAllocateImage(image.get(), 0, 0);
  EXPECT_EQ(image->imageData, nullptr);
  iplxSetMemoryLimit(400);
  iplSetErrStatus(IPL_StsOk);
  iplAllocateImage(image.get(), 0, 0);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
  EXPECT_NE(image->imageData, nullptr);
}

TEST_F(Memory, AllocatingWithoutAHeaderIsAnError) {
  iplAllocateImage(nullptr, 0, 0);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsNullPtr);
}

TEST_F(Memory, DataAloneCanBeFreedAndTheHeaderUsedOn) {
  const Image image = NewPixels(10, 10);
  iplDeallocate(image.get(), IPL_IMAGE_DATA);
  EXPECT_EQ(image->imageData, nullptr);
  EXPECT_EQ(iplxAllocatedBytes(), 0u);
  iplAllocateImage(image.get(), 0, 0);
  EXPECT_NE(image->imageData, nullptr);
}

TEST_F(Memory, FreeingTheHeaderAloneFreesItsPixelsToo) {
  iplDeallocate(NewPixels(10, 10).release(), IPL_IMAGE_HEADER);
  EXPECT_EQ(iplxAllocatedBytes(), 0u);
}

TEST_F(Memory, AMaskGoesWithItsImage) {
  Image image = NewPixels(10, 10);
  image->maskROI = NewPixels(10, 10).release();
  EXPECT_EQ(iplxAllocatedBytes(), 800u);
  iplDeallocate(image.get(), IPL_IMAGE_MASK);
  EXPECT_EQ(image->maskROI, nullptr);
  EXPECT_EQ(iplxAllocatedBytes(), 400u);
  image->maskROI = NewPixels(10, 10).release();
  image.reset();
  EXPECT_EQ(iplxAllocatedBytes(), 0u);
}

TEST_F(Memory, FreeingNothingIsAllowed) {
  iplDeallocate(nullptr, IPL_IMAGE_ALL);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
}

}  // namespace
}  // namespace kelto
