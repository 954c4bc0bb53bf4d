// Limits that hold whoever decodes, shown by BMP, which every decoder reads.
#include "runtime/stills/limits.h"

#include <fstream>

#include "runtime/stills/scratch.h"
#include "runtime/stills/still_error.h"
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

class AnyDecodersLimits : public StillTest {
 protected:
  std::string Grey(const std::string& name, int width, int height) const {
    test::WritePhoto(Path(name), width, height, [](int32_t, int32_t) {
      return test::Rgb{0x40, 0x40, 0x40};
    });
    return Path(name);
  }
};

TEST_F(AnyDecodersLimits, APictureOver32767PixelsASideIsRefusedWhenOpened) {
  const Opened wide = OpenStill(Grey("wide.bmp", 40000, 1));
  EXPECT_EQ(wide.error, codecBadDataErr);
  EXPECT_EQ(wide.text, "wide.bmp: 40000x1 pixels; the limit is 32767 pixels a side");
  EXPECT_EQ(OpenStill(Grey("tall.bmp", 1, 40000)).text,
            "tall.bmp: 1x40000 pixels; the limit is 32767 pixels a side");
}

TEST_F(AnyDecodersLimits, APictureOf32767PixelsASideIsDrawn) {
  const Loaded loaded = LoadStill(Grey("widest.bmp", 32767, 2));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_EQ(loaded.picture.width, 32767);
  EXPECT_EQ(loaded.picture.at(32766, 1), Rgb(0x40, 0x40, 0x40));
}

TEST_F(AnyDecodersLimits, AFewBytesThatClaimAHugePictureAreRefusedBeforeAnybodyAllocates) {
  const std::string bomb = Grey("bomb.bmp", 1, 1);
  {
    // 32000 x 32000 pixels, says the header.
    std::fstream file(bomb, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(18).write("\x00\x7d\0\0\x00\x7d\0\0", 8);
  }
  const Opened opened = OpenStill(bomb);
  EXPECT_EQ(opened.error, codecBadDataErr);
  EXPECT_EQ(opened.text,
            "bomb.bmp: 32000x32000 pixels in a file of 58 bytes; the limit is 10000 pixels a byte");
}

TEST_F(AnyDecodersLimits, WorkingMemoryIsCheckedBeforeItIsAllocated) {
  CheckScratch(kMaxScratchBytes);
  try {
    CheckScratch(kMaxScratchBytes + (1 << 20));
    FAIL() << "more than the limit was allowed";
  } catch (const StillError& error) {
    EXPECT_EQ(error.code, codecBadDataErr);
    EXPECT_EQ(error.reason, "decoding needs 2049 MiB of working memory; the limit is 2048 MiB");
  }
}

}  // namespace
}  // namespace kelto::stills
