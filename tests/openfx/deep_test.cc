// Images of 16 bits and float: they hold what 8 bits cannot.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>

#include "tests/adapters/run.h"
#include "tests/openfx/strict_host.h"

namespace kelto::test {
namespace {

constexpr Size kDeepSize{320, 180};
constexpr ofx::RectI kDeepFrame{0, 0, 320, 180};

using Colour16 = std::array<uint16_t, 3>;

/// Of 16 bits, at a pixel from the top left: slopes finer than a level of 8 bits.
Colour16 Slope(int x, int y) {
  return {static_cast<uint16_t>(10000 + 97 * x + 3 * y), static_cast<uint16_t>(50000 - 41 * x),
          static_cast<uint16_t>(20000 + 101 * y)};
}

/// Grey waves, which a shift by a pixel changes by up to 19 levels of 8 bits.
Colour16 Waves(int x, int y) {
  const double wave = std::sin(x * 0.4) + std::cos(y * 0.3);
  const auto grey = static_cast<uint16_t>(32768.0 + 12000.0 * wave);
  return {grey, grey, grey};
}

class OpenFxDeep : public testing::Test {
 protected:
  OpenFxDeep() : host_(BuiltPlugin()) {
    EXPECT_EQ(host_.Start(ofx::context::kFilter), ofx::kOk);
    Show(Slope, "slope.png");
    EXPECT_EQ(host_.Create(), ofx::kOk);
  }

  void Show(Colour16 (*colourAt)(int, int), const char* name) {
    std::ofstream raw(folder_ / "raw", std::ios::binary);
    for (int y = 0; y < kDeepSize.height; ++y) {
      for (int x = 0; x < kDeepSize.width; ++x) {
        const Colour16 pixel = colourAt(x, y);
        raw.write(reinterpret_cast<const char*>(pixel.data()), sizeof pixel);
      }
    }
    raw.close();
    EXPECT_EQ(RunProgram({"ffmpeg", "-nostdin", "-v", "error", "-f", "rawvideo", "-pix_fmt",
                          "rgb48le", "-s", kDeepSize.Text(), "-i", folder_ / "raw", "-pix_fmt",
                          "rgb48be", folder_ / name})
                  .code,
              0);
    host_.parameter("filename").text = folder_ / name;
  }
  void TearDown() override { EXPECT_EQ(TheFaults().Taken(), std::vector<std::string>()); }

  HostImage Frame(const char* depth, HostImage* source = nullptr) {
    HostImage image{kDeepFrame, kDeepFrame, depth};
    image.Make();
    EXPECT_EQ(host_.Run({.output = &image, .source = source}), ofx::kOk);
    return image;
  }

  TempFolder folder_;
  StrictHost host_;
};

TEST_F(OpenFxDeep, SlopesArriveWithAllTheirBits) {
  // Filters leave slopes as they are, wherever the effect lays its pixels, but at the photo's
  // edges.
  constexpr int kMargin = 20;
  HostImage words = Frame(ofx::value::kShort), floats = Frame(ofx::value::kFloat);
  for (int y = kMargin; y < kDeepSize.height - kMargin; ++y) {
    for (int x = kMargin; x < kDeepSize.width - kMargin; ++x) {
      const Colour16 left = Slope(x - 1, 0), right = Slope(x, 0);
      for (int i = 0; i < 3; ++i) {
        const auto channel = static_cast<size_t>(i);
        const double step = (double(right[channel]) - double(left[channel])) / 65535.0;
        ASSERT_NEAR(words.Sample(x, y, i) - words.Sample(x - 1, y, i), step, 1.001 / 65535.0);
        ASSERT_NEAR(floats.Sample(x, y, i) - floats.Sample(x - 1, y, i), step, 1.0 / 65536.0);
        ASSERT_NEAR(words.Sample(x, y, i), floats.Sample(x, y, i), 0.501 / 65535.0);
      }
      ASSERT_EQ(words.Sample(x, y, 3), 1.0);
    }
  }
}

TEST_F(OpenFxDeep, AllDepthsShowTheSameView) {
  Show(Waves, "waves.png");
  host_.parameter("x").number = [](double) { return 0.1; };
  for (const double zoom : {1.0, 1.7, 4.0}) {
    host_.parameter("zoom").number = [=](double) { return zoom; };
    HostImage bytes = Frame(ofx::value::kByte), words = Frame(ofx::value::kShort);
    for (int y = 2; y < kDeepSize.height - 2; ++y) {
      for (int x = 2; x < kDeepSize.width - 34; ++x) {
        for (int i = 0; i < 4; ++i) {
          // The effect's own frames hold 219 levels of grey, and end their kernels earlier; half a
          // pixel would be 9 levels.
          ASSERT_NEAR(words.Sample(x, y, i), bytes.Sample(x, y, i), 4.0 / 255.0)
              << zoom << ": " << x << " " << y << " " << i;
        }
      }
    }
  }
}

TEST_F(OpenFxDeep, FloatsBeyondWhiteStayBesideThePhoto) {
  host_.parameter("zoom").number = [](double) { return 0.5; };
  HostImage source{kDeepFrame, kDeepFrame, ofx::value::kFloat};
  source.Make();
  for (int y = 0; y < kDeepSize.height; ++y) {
    for (int x = 0; x < kDeepSize.width; ++x) {
      const float pixel[] = {static_cast<float>(x) / 50.0f, -0.25f, 0.5f, 0.75f};
      std::memcpy(source.At(x, y), pixel, sizeof pixel);
    }
  }
  HostImage output = Frame(ofx::value::kFloat, &source);
  for (int y = 0; y < kDeepSize.height; y += 3) {
    EXPECT_EQ(std::memcmp(output.At(0, y), source.At(0, y), 70 * output.PixelBytes()), 0) << y;
  }
  EXPECT_EQ(output.Sample(160, 90, 3), 1.0);
}

TEST_F(OpenFxDeep, StraightAlphaComesOutStraight) {
  host_.parameter("zoom").number = [](double) { return 0.5; };
  HostImage source{kDeepFrame, kDeepFrame, ofx::value::kFloat};
  source.alpha = ofx::value::kUnpremultiplied;
  source.Make();
  const float straight[] = {0.8f, 0.4f, 0.2f, 0.5f};
  for (int y = 0; y < kDeepSize.height; ++y) {
    for (int x = 0; x < kDeepSize.width; ++x) std::memcpy(source.At(x, y), straight, 16);
  }
  HostImage output = Frame(ofx::value::kFloat, &source);  // premultiplied
  EXPECT_NEAR(output.Sample(3, 3, 0), 0.4, 1e-6);
  EXPECT_NEAR(output.Sample(3, 3, 3), 0.5, 1e-6);
}

TEST_F(OpenFxDeep, WhatTheEffectAloneCanDrawComesWithEightBits) {
  host_.parameter("display").choice = 0;  // the photo, with the view outlined
  HostImage bytes = Frame(ofx::value::kByte), words = Frame(ofx::value::kShort);
  for (int y = 0; y < kDeepSize.height; ++y) {
    for (int x = 0; x < kDeepSize.width; ++x) {
      for (int i = 0; i < 4; ++i) {
        ASSERT_EQ(words.Sample(x, y, i), bytes.Sample(x, y, i));
      }
    }
  }
}

}  // namespace
}  // namespace kelto::test
