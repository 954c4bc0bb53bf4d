// Colours arrive: bars, ramps and edges through the module, in both layouts.
#include <cmath>

#include "tests/frames/host.h"

namespace kelto {
namespace {

using test::HostedEffect;
using test::Rgb;

const Rgb kBars[8] = {{255, 255, 255}, {255, 255, 0}, {0, 255, 255}, {0, 255, 0},
                      {255, 0, 255},   {255, 0, 0},   {0, 0, 255},   {0, 0, 0}};

struct YCbCr {
  double y, cb, cr;
};

/// Studio-range luma and chroma of full-range RGB, compressed to studio range first (BT.601
/// weights).
YCbCr Studio(const Rgb& c) {
  const auto level = [](double v) { return v * 219.0 / 255.0 + 16.0; };
  const double r = level(c.r), g = level(c.g), b = level(c.b);
  return {0.2989 * r + 0.5866 * g + 0.1145 * b, -0.1687 * r - 0.3312 * g + 0.5 * b + 128,
          0.5 * r - 0.4183 * g - 0.0816 * b + 128};
}

class Colours : public testing::TestWithParam<int32_t> {
 protected:
  test::TempFolder folder;
};

TEST_P(Colours, BarsStayTheRightColoursIn422) {
  test::WritePhoto(folder / "bars.bmp", 640, 360, [](int32_t x, int32_t) { return kBars[x / 80]; });
  HostedEffect effect(320, 180);
  effect.SetPhoto(folder / "bars.bmp");
  effect.SetList("filter", GetParam());
  effect.SetStillView(1.0);
  effect.Render();
  for (int bar = 0; bar < 8; ++bar) {
    const YCbCr want = Studio(kBars[bar]);
    for (const int32_t y : {0, 90, 179}) {
      const uint8_t* pixel = effect.output.row(y) + 2 * (40 * bar + 20);
      EXPECT_NEAR(pixel[0], want.y, 3) << "bar " << bar;
      EXPECT_NEAR(pixel[1], want.cb, 3) << "bar " << bar << ": even columns hold Cb";
      EXPECT_NEAR(pixel[3], want.cr, 3) << "bar " << bar << ": odd columns hold Cr";
    }
  }
}

TEST_P(Colours, BarsStayTheRightColoursInRgb) {
  test::WritePhoto(folder / "bars.bmp", 640, 360, [](int32_t x, int32_t) { return kBars[x / 80]; });
  HostedEffect effect(320, 180, hfxColorspaceRGB);
  effect.SetPhoto(folder / "bars.bmp");
  effect.SetList("filter", GetParam());
  effect.SetStillView(1.0);
  effect.Render();
  for (int bar = 0; bar < 8; ++bar) {
    const uint8_t* pixel = effect.output.row(90) + 4 * (40 * bar + 20);
    EXPECT_NEAR(pixel[2], kBars[bar].r, 3) << "bar " << bar;
    EXPECT_NEAR(pixel[1], kBars[bar].g, 3) << "bar " << bar;
    EXPECT_NEAR(pixel[0], kBars[bar].b, 3) << "bar " << bar;
    EXPECT_EQ(pixel[3], 255);
  }
}

TEST_P(Colours, AGreyRampKeepsItsLevelsAndHasNoTint) {
  test::WritePhoto(folder / "ramp.bmp", 1024, 576, [](int32_t x, int32_t) {
    const uint8_t v = static_cast<uint8_t>(x / 4);
    return Rgb{v, v, v};
  });
  HostedEffect effect(512, 288);
  effect.SetPhoto(folder / "ramp.bmp");
  effect.SetList("filter", GetParam());
  effect.SetStillView(1.0);
  effect.Render();
  for (int32_t x = 8; x < 504; ++x) {
    const uint8_t* pixel = effect.output.row(144) + 2 * x;
    EXPECT_NEAR(pixel[0], 16.0 + (2 * x / 4.0) * 219 / 255, 2.5) << x;
    EXPECT_NEAR(pixel[1], 128, 1) << x;
  }
}

TEST_P(Colours, ABackgroundAndAPictureOfOneColourMeetWithoutASeam) {
  test::WritePhoto(folder / "flat.bmp", 64, 36, [](int32_t, int32_t) { return Rgb{200, 90, 60}; });
  HostedEffect effect(64, 36);
  effect.SetPhoto(folder / "flat.bmp");
  effect.SetList("filter", GetParam());
  effect.SetList("levels", 1);
  const double colour[3] = {200.4 / 255, 90.4 / 255, 60.4 / 255};
  effect.SetKey("bgcolor", 0.0, colour);
  effect.SetStillView(0.5);
  effect.Render();
  for (int32_t y = 0; y < 36; ++y) {
    for (int32_t x = 0; x < 64; ++x) {
      EXPECT_NEAR(effect.output.row(y)[2 * x], effect.output.row(0)[0], 1);
      EXPECT_NEAR(effect.output.row(y)[2 * x + 1], effect.output.row(0)[2 * (x % 2) + 1], 1);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EveryFilter, Colours, testing::Range<int32_t>(0, 8));

class SoftEdges : public testing::TestWithParam<int32_t> {};

TEST_P(SoftEdges, AViewHalfOutsideShowsBackgroundBehindASmoothEdge) {
  test::TempFolder folder;
  test::WritePhoto(folder / "white.bmp", 320, 180, [](int32_t, int32_t) {
    return Rgb{255, 255, 255};
  });
  double last = -1.0;
  for (int step = 0; step < 8; ++step) {
    HostedEffect effect(160, 90);
    effect.SetPhoto(folder / "white.bmp");
    effect.SetList("filter", GetParam());
    // Half a view to the right, in eighths of an output pixel.
    effect.SetStillView(1.0, 0.5 - step / 8.0 / 160, 0.0);
    effect.Render();
    const uint8_t* row = effect.output.row(45);
    EXPECT_NEAR(row[2 * 40], 235, 1);
    EXPECT_NEAR(row[2 * 120], 16, 1);
    double covered = 0.0;
    for (int32_t x = 0; x < 160; ++x) covered += (row[2 * x] - 16) / 219.0;
    EXPECT_NEAR(covered, 80 + step / 8.0, 0.06) << "pixels covered";
    EXPECT_GT(covered, last) << "the edge moves with every eighth of a pixel";
    last = covered;
  }
}

INSTANTIATE_TEST_SUITE_P(EveryFilteredMode, SoftEdges, testing::Range<int32_t>(1, 8));

}  // namespace
}  // namespace kelto
