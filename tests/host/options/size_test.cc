#include "host/options/size.h"

#include <gtest/gtest.h>

#include "host/base/error.h"

namespace kelto::host {
namespace {

TEST(Size, ReadsWidthAndHeight) {
  EXPECT_EQ(ParseSize("1920x1080"), (FrameSize{1920, 1080}));
  EXPECT_EQ(ParseSize("2x16384"), (FrameSize{2, 16384}));
}

TEST(Size, RefusesSidesThatTheEffectOrAnEncoderCannotDo) {
  for (const char* text :
       {"0x0", "1x1", "1x100", "100x1", "16385x2", "2x16385", "-4x4", "99999999999x2"}) {
    EXPECT_THROW(ParseSize(text), UsageError) << text;
  }
}

TEST(Size, RefusesWhatIsNotTwoWholeNumbers) {
  for (const char* text : {"", "x", "1920", "1920x", "x1080", "1920X1080", "1920*1080",
                           "1920x1080x3", "19.2x10", " 4x4", "%sx%n"}) {
    EXPECT_THROW(ParseSize(text), UsageError) << text;
  }
}

TEST(Size, WritesWhatItReads) { EXPECT_EQ(ToString(ParseSize("640x480")), "640x480"); }

}  // namespace
}  // namespace kelto::host
