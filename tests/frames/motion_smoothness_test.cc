// A slow pan must look like one: the picture's centroid moves without a backward step or a tremble.
#include <cmath>
#include <cstdio>
#include <tuple>

#include "tests/frames/host.h"

namespace kelto {
namespace {

using test::HostedEffect;
using test::Rgb;

constexpr int32_t kFrames = 60;
constexpr int32_t kWidth = 320, kHeight = 180;

/// Horizontal centroid of the luma above black.
double Centroid(test::Picture& frame) {
  double weight = 0.0, moment = 0.0;
  for (int32_t y = 0; y < kHeight; ++y) {
    for (int32_t x = 0; x < kWidth; ++x) {
      const double v = frame.row(y)[2 * x] - 16.0;
      weight += v;
      moment += v * x;
    }
  }
  return moment / weight;
}

/// Filter, and source pixels an output pixel: a photograph larger than the frame, as they are.
class SlowPan : public testing::TestWithParam<std::tuple<int32_t, double>> {};

TEST_P(SlowPan, OfABlobHasNoBackwardStepAndHardlyAnyTremble) {
  test::TempFolder folder;
  const auto [filter, scale] = GetParam();
  const auto width = static_cast<int32_t>(kWidth * scale);
  const auto height = static_cast<int32_t>(kHeight * scale);
  const double deviation = 20.0 * scale;
  test::WritePhoto(folder / "blob.bmp", width, height, [=](int32_t x, int32_t y) {
    const double dx = x - width / 2.0, dy = y - height / 2.0;
    const double bright = std::exp(-(dx * dx + dy * dy) / (2 * deviation * deviation));
    const auto v = static_cast<uint8_t>(std::lround(255.0 * bright));
    return Rgb{v, v, v};
  });
  HostedEffect effect(kWidth, kHeight);
  effect.SetPhoto(folder / "blob.bmp");
  effect.SetList("filter", filter);
  effect.state.totalFrames = kFrames;
  // About a fifth of a pixel a frame.
  effect.SetView(0.0, 1.0, 0.02, 0.0);
  effect.SetView(1.0, 1.0, -0.02, 0.0);
  std::vector<double> x;
  for (int32_t frame = 0; frame < kFrames; ++frame) {
    effect.Render(frame);
    x.push_back(Centroid(effect.output));
  }
  double sum = 0.0, squares = 0.0;
  for (size_t i = 1; i + 1 < x.size(); ++i) {
    EXPECT_GT(x[i + 1], x[i]) << "frame " << i + 1 << " steps back";
    const double second = x[i + 1] - 2 * x[i] + x[i - 1];
    sum += second;
    squares += second * second;
  }
  const double n = static_cast<double>(x.size() - 2);
  const double tremble = std::sqrt(squares / n - (sum / n) * (sum / n));
  const bool sharp =
      filter == test::kCatmull || filter == test::kHiQual || filter == test::kUltraQual;
  EXPECT_LT(tremble, sharp ? 0.006 : 0.02) << "px per frame squared";
  std::printf("filter %d, scale %.3f: second difference %.5f px per frame squared\n", filter, scale,
              tremble);
}

INSTANTIATE_TEST_SUITE_P(EveryFilteredMode, SlowPan,
                         testing::Combine(testing::Range<int32_t>(1, 8),
                                          testing::Values(3.125, 4.7)));

}  // namespace
}  // namespace kelto
