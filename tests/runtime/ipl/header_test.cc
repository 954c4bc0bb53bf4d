#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "tests/runtime/ipl/fixture.h"

namespace kelto {
namespace {

using Header = IplTest;

TEST_F(Header, DescribesTheImageAskedForAndHasNoPixels) {
  int owner = 0;
  const Image image(iplCreateImageHeader(3, 0, IPL_DEPTH_8U, "YCr", "YCr", IPL_DATA_ORDER_PIXEL,
                                         IPL_ORIGIN_TL, IPL_ALIGN_QWORD, 5, 7, nullptr, nullptr,
                                         &owner, nullptr));
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->nSize, static_cast<int32_t>(sizeof(IplImage)));
  EXPECT_EQ(image->nChannels, 3);
  EXPECT_EQ(image->alphaChannel, 0);
  EXPECT_EQ(image->depth, 8);
  EXPECT_EQ(std::memcmp(image->colorModel, "YCr\0", 4), 0);
  EXPECT_EQ(std::memcmp(image->channelSeq, "YCr\0", 4), 0);
  EXPECT_EQ(image->align, 8);
  EXPECT_EQ(image->width, 5);
  EXPECT_EQ(image->height, 7);
  EXPECT_EQ(image->imageId, &owner);
  EXPECT_EQ(image->roi, nullptr);
  EXPECT_EQ(image->maskROI, nullptr);
  EXPECT_EQ(image->imageData, nullptr);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
}

TEST_F(Header, FourCharacterNamesAreKeptWholeWithoutATerminator) {
  const Image image = NewHeader(4, "RGBA", "BGRA", IPL_ALIGN_DWORD, 1, 1);
  EXPECT_EQ(std::memcmp(image->colorModel, "RGBA", 4), 0);
  EXPECT_EQ(std::memcmp(image->channelSeq, "BGRA", 4), 0);
}

TEST_F(Header, RowsArePaddedToTheAlignment) {
  struct {
    int32_t channels, align, width, widthStep;
  } const cases[] = {{4, 4, 5, 20}, {4, 8, 5, 24}, {3, 8, 5, 16}, {3, 8, 8, 24}, {3, 4, 1, 4}};
  for (const auto& c : cases) {
    const Image image = NewHeader(c.channels, "RGB", "BGR", c.align, c.width, 10);
    EXPECT_EQ(image->widthStep, c.widthStep) << c.channels << " channels, align " << c.align;
    EXPECT_EQ(image->imageSize, static_cast<uint32_t>(c.widthStep) * 10);
  }
}

TEST_F(Header, ImagesBeyondTwoGigabytesAreRefusedWithoutOverflow) {
  constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
  // 2^31 - 8 bytes are the most that rows of 8 bytes can come to.
  EXPECT_NE(NewHeader(4, "MSI", "MSI", IPL_ALIGN_QWORD, 2, 268435455), nullptr);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
  struct {
    int32_t width, height;
  } const cases[] = {{2, 268435456}, {32768, 16384}, {65536, 65536},
                     {kMax, 1},      {1, kMax},      {kMax, kMax}};
  for (const auto& c : cases) {
    iplSetErrStatus(IPL_StsOk);
    EXPECT_EQ(NewHeader(4, "MSI", "MSI", IPL_ALIGN_QWORD, c.width, c.height), nullptr)
        << c.width << " x " << c.height;
    EXPECT_EQ(iplGetErrStatus(), IPL_BadImageSize);
  }
}

TEST_F(Header, SidesBelowOneAreRefused) {
  for (const int32_t side : {0, -1, std::numeric_limits<int32_t>::min()}) {
    iplSetErrStatus(IPL_StsOk);
    EXPECT_EQ(NewHeader(4, "MSI", "MSI", IPL_ALIGN_QWORD, side, 1), nullptr);
    EXPECT_EQ(iplGetErrStatus(), IPL_BadImageSize);
    iplSetErrStatus(IPL_StsOk);
    EXPECT_EQ(NewHeader(4, "MSI", "MSI", IPL_ALIGN_QWORD, 1, side), nullptr);
    EXPECT_EQ(iplGetErrStatus(), IPL_BadImageSize);
  }
}

struct Layout {
  int32_t channels = 3, alpha = 0, depth = IPL_DEPTH_8U;
  const char* model = "RGB";
  const char* sequence = "BGR";
  int32_t order = IPL_DATA_ORDER_PIXEL, origin = IPL_ORIGIN_TL, align = IPL_ALIGN_DWORD;
};

int32_t StatusOf(const Layout& layout) {
  iplSetErrStatus(IPL_StsOk);
  const Image image(iplCreateImageHeader(layout.channels, layout.alpha, layout.depth, layout.model,
                                         layout.sequence, layout.order, layout.origin, layout.align,
                                         4, 4, nullptr, nullptr, nullptr, nullptr));
  EXPECT_EQ(image == nullptr, iplGetErrStatus() != IPL_StsOk);
  return iplGetErrStatus();
}

TEST_F(Header, EveryUnsupportedLayoutHasItsStatus) {
  EXPECT_EQ(StatusOf({}), IPL_StsOk);
  EXPECT_EQ(StatusOf({.channels = 0}), IPL_BadNumChannels);
  EXPECT_EQ(StatusOf({.channels = 5}), IPL_BadNumChannels);
  EXPECT_EQ(StatusOf({.alpha = -1}), IPL_StsBadArg);
  EXPECT_EQ(StatusOf({.alpha = 4}), IPL_StsBadArg);
  EXPECT_EQ(StatusOf({.depth = 16}), IPL_StsBadArg);
  EXPECT_EQ(StatusOf({.model = nullptr}), IPL_StsNullPtr);
  EXPECT_EQ(StatusOf({.sequence = nullptr}), IPL_StsNullPtr);
  EXPECT_EQ(StatusOf({.model = "RGBAX"}), IPL_StsBadArg);
  EXPECT_EQ(StatusOf({.order = 1}), IPL_BadOrder);
  EXPECT_EQ(StatusOf({.origin = 1}), IPL_StsBadArg);
  EXPECT_EQ(StatusOf({.align = 3}), IPL_StsBadArg);
  EXPECT_EQ(StatusOf({.align = 16}), IPL_StsBadArg);
}

}  // namespace
}  // namespace kelto
