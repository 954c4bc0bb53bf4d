#include "deep/picture.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <utility>

namespace kelto {
namespace {

TEST(DeepPicture, HasAlignedRowsThatLieApartInTheCache) {
  for (const int32_t width : {1, 7, 512, 1000, 4096}) {
    for (const DeepSample sample : {DeepSample::kUnsigned16, DeepSample::kFloat32}) {
      DeepPicture picture(width, 3, sample, true);
      const DeepTarget view = picture.view();
      EXPECT_EQ(reinterpret_cast<uintptr_t>(view.pixels) % 64, 0u);
      EXPECT_EQ(view.rowBytes % 64, 0);
      EXPECT_NE(view.rowBytes % 4096, 0) << width;
      EXPECT_GE(static_cast<size_t>(view.rowBytes), width * PixelBytes(sample));
      EXPECT_EQ(picture.bytes(), DeepPicture::BytesFor(width, 3, sample));
      EXPECT_EQ(picture.bytes(), 3 * static_cast<size_t>(view.rowBytes));
    }
  }
}

TEST(DeepPicture, MovesWithItsPixels) {
  DeepPicture first(5, 4, DeepSample::kFloat32, false);
  first.view().Row<float>(3)[19] = 0.25f;
  const DeepPicture second = std::move(first);
  EXPECT_EQ(second.view().Row<float>(3)[19], 0.25f);
  EXPECT_EQ(second.width(), 5);
  EXPECT_EQ(second.height(), 4);
  EXPECT_FALSE(second.hasAlpha());
}

TEST(DeepPicture, RefusesSizesThatNoMemoryHolds) {
  EXPECT_THROW(DeepPicture(0, 4, DeepSample::kUnsigned16, true), std::invalid_argument);
  EXPECT_THROW(DeepPicture(4, -1, DeepSample::kUnsigned16, true), std::invalid_argument);
  EXPECT_THROW(DeepPicture::BytesFor(INT32_MAX, INT32_MAX, DeepSample::kFloat32), std::bad_alloc);
}

}  // namespace
}  // namespace kelto
