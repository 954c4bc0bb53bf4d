// Images as hosts store them: padded, bottom-up, in fields.
#include "tests/frames/host.h"

namespace kelto {
namespace {

using test::HostedEffect;
using test::Picture;
using test::Rgb;

Rgb Pattern(int32_t x, int32_t y) {
  return {static_cast<uint8_t>(x * 3), static_cast<uint8_t>(y * 5), static_cast<uint8_t>(x + y)};
}

struct Layout {
  int32_t colorspace, padding;
  bool bottomUp;
};

class Layouts : public testing::TestWithParam<Layout> {
 protected:
  Layouts() { test::WritePhoto(folder / "p.bmp", 97, 61, Pattern); }
  /// The frame in `layout`, without what lies between its rows.
  std::vector<uint8_t> Frame(const Layout& layout, int32_t filter, bool video) {
    HostedEffect effect(50, 30, layout.colorspace, layout.padding, layout.bottomUp);
    effect.SetPhoto(folder / "p.bmp");
    effect.SetList("filter", filter);
    effect.SetList("compositeover", video ? 1 : 0);
    effect.SetStillView(0.7, 0.1, -0.05);
    effect.Render();
    EXPECT_TRUE(effect.output.GuardsIntact()) << "a byte outside the output's pixels changed";
    EXPECT_TRUE(effect.input.GuardsIntact()) << "a byte outside the input's pixels changed";
    return effect.output.Packed();
  }
  test::TempFolder folder;
};

TEST_P(Layouts, PaddedAndBottomUpImagesHoldTheSamePixelsAndKeepEveryOtherByte) {
  const Layout plain = {GetParam().colorspace, 0, false};
  for (const int32_t filter : {0, 1, 6}) {
    for (const bool video : {false, true}) {
      EXPECT_EQ(Frame(GetParam(), filter, video), Frame(plain, filter, video))
          << "filter " << filter << (video ? " over video" : " over colour");
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Hosts, Layouts,
    testing::Values(Layout{hfxColorspaceYCbCr, 28, false}, Layout{hfxColorspaceYCbCr, 3, true},
                    Layout{hfxColorspaceYCbCr, 0, true}, Layout{hfxColorspaceRGB, 24, false},
                    Layout{hfxColorspaceRGB, 1, false}, Layout{hfxColorspaceRGB, 8, true},
                    Layout{hfxColorspaceRGB, 0, true}));

TEST(Fields, InterleaveIntoTheProgressiveFrameOfAStillView) {
  test::TempFolder folder;
  test::WritePhoto(folder / "p.bmp", 97, 61, Pattern);
  for (int32_t filter = 0; filter < 8; ++filter) {
    for (const double zoom : {0.6, 1.0, 3.3}) {
      HostedEffect effect(50, 30);
      effect.SetPhoto(folder / "p.bmp");
      effect.SetList("filter", filter);
      effect.SetStillView(zoom, 0.03, 0.07);
      effect.Render();
      const auto frame = effect.output.Packed();
      effect.state.fieldMode = hfxFieldModeSeparate;
      effect.state.videoType = hfxVideoType525;
      for (const bool top : {true, false}) {
        Picture field(50, 15, hfxColorspaceYCbCr, 4);
        effect.state.topField = top;
        effect.RenderInto(0, field);
        for (int32_t y = 0; y < 15; ++y) {
          const auto from = frame.begin() + 100 * (2 * y + (top ? 0 : 1));
          EXPECT_EQ(std::vector<uint8_t>(field.row(y), field.row(y) + 100),
                    std::vector<uint8_t>(from, from + 100))
              << "filter " << filter << ", zoom " << zoom << ", row " << y
              << (top ? " top" : " bottom");
        }
      }
    }
  }
}

}  // namespace
}  // namespace kelto
