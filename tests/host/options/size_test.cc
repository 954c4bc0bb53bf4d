#include "host/options/size.h"

#include <gtest/gtest.h>

#include "host/base/error.h"

namespace kelto::host {
namespace {

TEST(Size, ReadsWidthAndHeight) {
  EXPECT_EQ(ParseSize("1920x1080"), (FrameSize{1920, 1080}));
  EXPECT_EQ(ParseSize("2x16384"), (FrameSize{2, 16384}));
}

TEST(Size, ReadsTheNamesOfSizesThatFilmsOftenHave) {
  EXPECT_EQ(ParseSize("1080p"), (FrameSize{1920, 1080}));
  EXPECT_EQ(ParseSize("4k"), (FrameSize{3840, 2160}));
  EXPECT_EQ(ParseSize("square"), (FrameSize{1080, 1080}));
  EXPECT_EQ(ParseSize("story"), (FrameSize{1080, 1920}));
  EXPECT_EQ(ParseSize("portrait"), (FrameSize{1080, 1350}));
  for (const NamedSize& named : NamedSizes()) {
    EXPECT_EQ(named.size.width % 2 + named.size.height % 2, 0) << named.name << " fits all codecs";
  }
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
