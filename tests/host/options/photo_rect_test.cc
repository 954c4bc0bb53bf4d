#include "host/options/photo_rect.h"

#include <gtest/gtest.h>

#include "host/base/error.h"

namespace kelto::host {
namespace {

TEST(PhotoRect, IsFourNumbers) {
  EXPECT_EQ(ParsePhotoRect("1200,400,1920,1080"), (PhotoRect{1200, 400, 1920, 1080}));
  EXPECT_EQ(ParsePhotoRect("-1.5,0,0.25,1e2"), (PhotoRect{-1.5, 0, 0.25, 100}));
}

TEST(PhotoRect, OtherTextsAreRefused) {
  for (const char* text : {"", "1", "1,2,3", "1,2,3,4,5", "1,2,3,", "a,2,3,4", "1,2,0,4",
                           "1,2,3,-4", "1, 2,3,4", "nan,2,3,4", "1,2,inf,4", "1,2,3,1e9"}) {
    EXPECT_THROW(ParsePhotoRect(text), UsageError) << text;
  }
}

TEST(PhotoRect, IsToldFromAZoomWithItsCentre) {
  EXPECT_TRUE(IsPhotoRect("1,2,3,4"));
  EXPECT_TRUE(IsPhotoRect("1,2"));
  EXPECT_FALSE(IsPhotoRect("2@0.1,0.2"));
  EXPECT_FALSE(IsPhotoRect("2"));
}

}  // namespace
}  // namespace kelto::host
