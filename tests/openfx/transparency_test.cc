// Images over nothing: transparent beside the photo, in every depth.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/adapters/run.h"
#include "tests/openfx/strict_host.h"

namespace kelto::test {
namespace {

constexpr Size kOverNothing{320, 180};
constexpr ofx::RectI kOverNothingFrame{0, 0, 320, 180};
constexpr const char* kEveryDepth[] = {ofx::value::kByte, ofx::value::kShort, ofx::value::kFloat};

class OpenFxTransparency : public testing::Test {
 protected:
  /// A host whose photo, of one colour, covers the middle; its edges lie within pixels.
  OpenFxTransparency() {
    photo_ = folder_ / "photo.png";
    // Grey: the effect's own frames share chroma between pixels, over the photo's edge, too.
    Paint("0xb4b4b4ff", photo_);
  }
  void TearDown() override { EXPECT_EQ(TheFaults().Taken(), std::vector<std::string>()); }

  static void Paint(const std::string& colour, const std::string& file) {
    EXPECT_EQ(RunProgram({"ffmpeg", "-nostdin", "-v", "error", "-f", "lavfi", "-i",
                          "color=" + colour + ":size=" + kOverNothing.Text() + ",format=rgba",
                          "-frames:v", "1", "-pix_fmt", "rgba64be", "-y", file})
                  .code,
              0);
  }

  HostImage Frame(const char* context, const char* depth, const char* alpha,
                  const char* components = ofx::value::kRgba) {
    StrictHost host(BuiltPlugin());
    EXPECT_EQ(host.Start(context), ofx::kOk);
    host.parameter("filename").text = photo_;
    host.parameter("background").choice = kNothing;
    host.parameter("zoom").number = [](double) { return 0.503; };
    EXPECT_EQ(host.Create(), ofx::kOk);
    HostImage source{kOverNothingFrame, kOverNothingFrame, depth};
    source.Make();
    HostImage image{kOverNothingFrame, kOverNothingFrame, depth, components, alpha};
    image.Make();
    const bool filter = std::string(context) != ofx::context::kGenerator;
    EXPECT_EQ(host.Run({.output = &image, .source = filter ? &source : nullptr}), ofx::kOk);
    return image;
  }

  static constexpr int kNothing = 3;  ///< of the choices for what lies beside the photo
  static constexpr double kGrey = 180 / 255.0;
  static constexpr double kColour[] = {200 / 255.0, 100 / 255.0, 50 / 255.0};
  TempFolder folder_;
  std::string photo_;
};

TEST_F(OpenFxTransparency, BesideThePhotoThereIsNothing) {
  for (const char* context : {ofx::context::kFilter, ofx::context::kGenerator}) {
    for (const char* depth : kEveryDepth) {
      HostImage image = Frame(context, depth, ofx::value::kPremultiplied);
      for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(image.Sample(5, 5, i), 0.0) << depth << ", channel " << i;
        EXPECT_NEAR(image.Sample(160, 90, i), i < 3 ? kGrey : 1.0, 3 / 255.0) << depth;
      }
      // Edges are as opaque as they cover their pixels, and their colours are multiplied by it.
      double least = 1.0;
      for (int x = 0; x < kOverNothing.width; ++x) {
        const double alpha = image.Sample(x, 90, 3);
        if (alpha > 0.0) least = std::min(least, alpha);
        for (int i = 0; i < 3; ++i) {
          ASSERT_NEAR(image.Sample(x, 90, i), alpha * kGrey, 3 / 255.0) << depth << ": " << x;
        }
      }
      EXPECT_LT(least, 0.9) << depth;
      EXPECT_GT(least, 0.1) << depth;
    }
  }
}

TEST_F(OpenFxTransparency, StraightImagesHaveWholeColours) {
  for (const char* depth : kEveryDepth) {
    HostImage image = Frame(ofx::context::kGenerator, depth, ofx::value::kUnpremultiplied);
    for (int x = 0; x < kOverNothing.width; ++x) {
      if (image.Sample(x, 90, 3) == 0.0) continue;
      for (int i = 0; i < 3; ++i) {
        ASSERT_NEAR(image.Sample(x, 90, i), kGrey, 3 / 255.0) << depth << ": " << x;
      }
    }
    EXPECT_EQ(image.Sample(5, 5, 3), 0.0) << depth;
  }
}

TEST_F(OpenFxTransparency, ImagesWithoutAlphaShowBlack) {
  Paint("0xc86432ff", photo_);
  for (const char* depth : kEveryDepth) {
    HostImage image = Frame(ofx::context::kGenerator, depth, ofx::value::kOpaque, ofx::value::kRgb);
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(image.Sample(5, 5, i), 0.0) << depth;
      EXPECT_NEAR(image.Sample(160, 90, i), kColour[i], 3 / 255.0) << depth;
    }
  }
}

TEST_F(OpenFxTransparency, ATransparentPhotoIsSeenThroughInDeepImages) {
  Paint("0xc8643280", photo_);
  for (const char* depth : {ofx::value::kShort, ofx::value::kFloat}) {
    HostImage image = Frame(ofx::context::kGenerator, depth, ofx::value::kPremultiplied);
    const double alpha = 128 / 255.0;
    EXPECT_NEAR(image.Sample(160, 90, 3), alpha, 1 / 255.0) << depth;
    for (int i = 0; i < 3; ++i) {
      EXPECT_NEAR(image.Sample(160, 90, i), alpha * kColour[i], 2 / 255.0) << depth;
    }
    EXPECT_EQ(image.Sample(5, 5, 3), 0.0) << depth;
  }
}

}  // namespace
}  // namespace kelto::test
