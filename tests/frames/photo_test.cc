// A photograph of 24 megapixels through every filter.
#include <cmath>

#include "tests/frames/host.h"

namespace kelto {
namespace {

using test::HostedEffect;
using test::Rgb;

/// Something with detail at every scale.
Rgb Scene(int32_t x, int32_t y) {
  const double rings = std::sin(0.00002 * (double{1} * x * x + double{1} * y * y));
  const auto v = static_cast<uint8_t>(127 + 120 * rings);
  return {v, static_cast<uint8_t>((x / 24) & 255), static_cast<uint8_t>((y / 16) & 255)};
}

TEST(LargePhoto, RendersTo1080LinesWithEveryFilter) {
  test::TempFolder folder;
  test::WritePhoto(folder / "large.bmp", 6000, 4000, Scene);
  HostedEffect effect(1920, 1080);
  effect.SetPhoto(folder / "large.bmp");
  effect.SetStillView(1.0);
  std::vector<uint8_t> sharpest;
  for (int32_t filter = 7; filter >= 0; --filter) {
    effect.SetList("filter", filter);
    effect.Render();
    const auto frame = effect.output.Packed();
    if (sharpest.empty()) sharpest = frame;
    double difference = 0.0;
    for (size_t i = 0; i < frame.size(); ++i) difference += std::abs(frame[i] - sharpest[i]);
    EXPECT_LT(difference / static_cast<double>(frame.size()), filter == 0 ? 30.0 : 15.0)
        << "filter " << filter << " shows another picture";
    EXPECT_GT(effect.output.row(540)[2 * 1800], 16);
  }
}

}  // namespace
}  // namespace kelto
