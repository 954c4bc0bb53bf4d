// Interlaced frames: a host renders each field at its own time.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/adapters/run.h"
#include "tests/openfx/strict_host.h"

namespace kelto::test {
namespace {

constexpr ofx::RectI kFieldFrame{0, 0, 160, 90};
constexpr ofx::RectI kFieldRows{0, 0, 160, 45};
const char* const kFieldDepths[] = {ofx::value::kByte, ofx::value::kShort, ofx::value::kFloat};

class OpenFxFields : public testing::Test {
 protected:
  OpenFxFields() : host_(BuiltPlugin()) {
    WriteTestPhoto(folder_ / "photo.bmp", 400, 240);
    EXPECT_EQ(host_.Start(ofx::context::kFilter), ofx::kOk);
    host_.parameter("filename").text = folder_ / "photo.bmp";
    host_.parameter("x").number = [](double time) { return 0.02 * time; };
    EXPECT_EQ(host_.Create(), ofx::kOk);
  }
  void TearDown() override { EXPECT_EQ(TheFaults().Taken(), std::vector<std::string>()); }

  static HostImage ImageOf(const ofx::RectI& bounds, const char* depth, const char* field) {
    HostImage image{bounds, bounds, depth};
    image.field = field;
    image.halfHeight = bounds.y2 == kFieldRows.y2;
    image.Make();
    return image;
  }
  HostImage Whole(double time, const char* depth, HostImage* source = nullptr) {
    HostImage image = ImageOf(kFieldFrame, depth, ofx::value::kFieldNone);
    EXPECT_EQ(host_.Run({.time = time, .output = &image, .source = source}), ofx::kOk);
    return image;
  }
  static bool SameRow(HostImage& a, int rowOfA, HostImage& b, int rowOfB) {
    return std::memcmp(a.At(0, rowOfA), b.At(0, rowOfB), 160 * a.PixelBytes()) == 0;
  }

  TempFolder folder_;
  StrictHost host_;
};

TEST_F(OpenFxFields, OfAnImageThatHoldsBothTheRowsOfTheOtherAreLeftAlone) {
  for (const char* depth : kFieldDepths) {
    HostImage before = Whole(2.0, depth), after = Whole(2.5, depth);
    HostImage image = ImageOf(kFieldFrame, depth, ofx::value::kFieldBoth), untouched = image;
    ASSERT_EQ(host_.Run({.time = 2.0, .field = ofx::value::kFieldLower, .output = &image}),
              ofx::kOk);
    for (int y = 0; y < 90; ++y) {
      EXPECT_TRUE(SameRow(image, y, y % 2 == 0 ? before : untouched, y)) << depth << " " << y;
    }
    ASSERT_EQ(host_.Run({.time = 2.5, .field = ofx::value::kFieldUpper, .output = &image}),
              ofx::kOk);
    int different = 0;
    for (int y = 0; y < 90; ++y) {
      EXPECT_TRUE(SameRow(image, y, y % 2 == 0 ? before : after, y)) << depth << " " << y;
      different += SameRow(before, y, after, y) ? 0 : 1;
    }
    EXPECT_GT(different, 80);  // or the fields could not be told apart
    ASSERT_EQ(host_.Run({.time = 2.0, .field = ofx::value::kFieldBoth, .output = &image}),
              ofx::kOk);
    EXPECT_EQ(image.memory, before.memory);
  }
}

TEST_F(OpenFxFields, AnImageOfOneFieldAloneHasItsRowsOfTheFrame) {
  for (const char* depth : kFieldDepths) {
    HostImage whole = Whole(3.5, depth);
    for (const int first : {0, 1}) {
      const char* field = first == 0 ? ofx::value::kFieldLower : ofx::value::kFieldUpper;
      HostImage image = ImageOf(kFieldRows, depth, field), part = image;
      ASSERT_EQ(host_.Run({.time = 3.5, .field = field, .output = &image}), ofx::kOk);
      EXPECT_TRUE(image.GuardsHold());
      for (int y = 0; y < 45; ++y) EXPECT_TRUE(SameRow(image, y, whole, 2 * y + first)) << y;
      // A window counts the field's own rows.
      const HostImage untouched = part;
      const ofx::RectI window{0, 10, 160, 31};
      ASSERT_EQ(host_.Run({.time = 3.5, .window = window, .field = field, .output = &part}),
                ofx::kOk);
      HostImage expected = untouched;
      for (int y = 10; y < 31; ++y) {
        std::memcpy(expected.At(0, y), image.At(0, y), 160 * image.PixelBytes());
      }
      EXPECT_EQ(part.memory, expected.memory) << depth << " " << field;
    }
  }
}

TEST_F(OpenFxFields, BesideThePhotoTheSourcesFieldStaysToTheBit) {
  host_.parameter("zoom").number = [](double) { return 0.4; };
  for (const char* depth : kFieldDepths) {
    HostImage source = ImageOf(kFieldRows, depth, ofx::value::kFieldUpper), output = source;
    for (int y = 0; y < 45; ++y) {
      for (int x = 0; x < 160; ++x) {
        std::memset(source.At(x, y), 3 * y + x % 7, source.PixelBytes());
        if (depth == std::string(ofx::value::kFloat)) {
          const float pixel[] = {float(y) / 50.0f, float(x) / 200.0f, 0.25f, 1.0f};
          std::memcpy(source.At(x, y), pixel, sizeof pixel);
        }
      }
    }
    ASSERT_EQ(host_.Run({.field = ofx::value::kFieldUpper, .output = &output, .source = &source}),
              ofx::kOk);
    int kept = 0;
    for (int y = 0; y < 45; ++y) {
      kept += std::memcmp(output.At(0, y), source.At(0, y), 40 * source.PixelBytes()) == 0 ? 1 : 0;
    }
    EXPECT_EQ(kept, 45) << depth;
    EXPECT_NE(std::memcmp(output.At(80, 22), source.At(80, 22), source.PixelBytes()), 0) << depth;
  }
}

TEST_F(OpenFxFields, AFieldWithEachRowTwiceIsDrawnAsAFrame) {
  HostImage whole = Whole(1.5, ofx::value::kByte);
  HostImage image = ImageOf(kFieldFrame, ofx::value::kByte, ofx::value::kFieldUpper);
  ASSERT_EQ(host_.Run({.time = 1.5, .field = ofx::value::kFieldUpper, .output = &image}), ofx::kOk);
  EXPECT_EQ(image.memory, whole.memory);
}

}  // namespace
}  // namespace kelto::test
