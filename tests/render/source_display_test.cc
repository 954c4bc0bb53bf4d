// The source display: the whole picture at any zoom, with the view and its action-safe frame
// outlined on it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "image/cache.h"
#include "render/outline.h"
#include "render/pipeline.h"
#include "tests/support/instance.h"

namespace kelto {
namespace {

using test::Instance;
using test::Picture;

/// A grey picture that grows brighter to the right and, less, to the bottom, over a frame of its
/// own shape.
class SourceDisplay : public testing::Test {
 protected:
  static constexpr int32_t kWidth = 32, kHeight = 18;

  SourceDisplay()
      : input(kWidth, kHeight, hfxColorspaceYCbCr), output(kWidth, kHeight, hfxColorspaceYCbCr) {
    instance.host().displayAspect = 16.0 / 9.0;
    instance.overlayOff = 1;
    hfx::SetInput(instance, 0, input.image());
    hfx::SetOutput(instance, 0, output.image());
    IplImage* cached = NewCachedImageHeader(2 * kWidth, 2 * kHeight);
    AllocateImageData(instance, cached);
    instance.picture.workImages[0].reset(cached);
    for (int32_t y = 0; y < cached->height; ++y) {
      for (int32_t x = 0; x < cached->width; ++x) {
        char* pixel = cached->imageData + ptrdiff_t{y} * cached->widthStep + ptrdiff_t{4} * x;
        pixel[0] = static_cast<char>(20 + 2 * x + y);
        pixel[1] = pixel[2] = static_cast<char>(128);
      }
    }
  }
  std::vector<uint8_t> Render(int32_t display) {
    instance.settings.display = display;
    RenderFrame(instance, {0, 0, kWidth - 1, kHeight - 1});
    return output.Packed();
  }
  void SetView(double zoom, double centreX, double centreY) {
    instance.settings.view.zoom = zoom;
    instance.settings.view.centreX = centreX;
    instance.settings.view.centreY = centreY;
  }

  Instance instance;
  Picture input, output;
};

TEST_F(SourceDisplay, FitsTheWholePictureWhateverTheView) {
  const auto whole = Render(0);
  EXPECT_NEAR(output.row(0)[0], 20 + 1, 3) << "the picture's first pixels";
  EXPECT_NEAR(output.row(kHeight - 1)[2 * (kWidth - 1)], 20 + 126 + 35 - 1, 3) << "its last ones";
  for (const double zoom : {0.5, 3.0}) {
    SetView(zoom, 0.2, -0.1);
    EXPECT_EQ(Render(0), whole) << zoom;
    EXPECT_NE(Render(1), whole) << zoom;
  }
}

TEST_F(SourceDisplay, IsTheTargetAtZoomOneAboutTheMiddle) {
  SetView(1.0, 0.0, 0.0);
  const auto target = Render(1);
  SetView(3.0, 0.2, -0.1);
  EXPECT_EQ(Render(0), target);
}

TEST_F(SourceDisplay, OutlinesTheViewOverThePictureThatIsShownWithoutIt) {
  SetView(2.0, 0.25, 0.0);
  const auto bare = Render(0);
  instance.overlayOff = 0;
  Render(0);
  Picture outlined(kWidth, kHeight, hfxColorspaceYCbCr);
  for (int32_t y = 0; y < kHeight; ++y) {
    std::memcpy(outlined.row(y), bare.data() + ptrdiff_t{2} * kWidth * y, 2 * kWidth);
  }
  DrawViewOverlay(instance, *outlined.image(), hfxColorspaceYCbCr);
  EXPECT_EQ(output.Packed(), outlined.Packed());
  EXPECT_NE(output.Packed(), bare);
}

/// A view of half the frame's extent, off its middle, on a flat frame of 120 x 80.
class ViewOverlay : public testing::Test {
 protected:
  static constexpr int32_t kWidth = 120, kHeight = 80;

  ViewOverlay() {
    instance.settings.view.zoom = 2.0;
    instance.settings.view.centreX = 0.125;
    instance.settings.view.centreY = -0.125;
  }
  struct Edges {
    int32_t left, top, right, bottom, thickness;
  };
  /// True for a pixel of the lines, which grow to the right and down from their places.
  static bool On(const Edges& e, int32_t x, int32_t y) {
    const auto line = [&](int32_t i, int32_t at) { return i >= at && i < at + e.thickness; };
    const bool along = x >= e.left && x < e.right + e.thickness;
    const bool down = y >= e.top && y < e.bottom + e.thickness;
    return ((line(x, e.left) || line(x, e.right)) && down) ||
           ((line(y, e.top) || line(y, e.bottom)) && along);
  }
  /// Draws the overlay and expects these outlines and nothing else.
  void ExpectOutlines(const std::vector<Edges>& outlines) {
    Picture picture(kWidth, kHeight, hfxColorspaceYCbCr);
    for (int32_t y = 0; y < kHeight; ++y) std::memset(picture.row(y), 100, 2 * kWidth);
    DrawViewOverlay(instance, *picture.image(), hfxColorspaceYCbCr);
    for (int32_t y = 0; y < kHeight; ++y) {
      for (int32_t x = 0; x < kWidth; ++x) {
        const bool marked = std::any_of(outlines.begin(), outlines.end(),
                                        [&](const Edges& e) { return On(e, x, y); });
        ASSERT_EQ(picture.row(y)[2 * x], marked ? 170 : 100) << x << ", " << y;
      }
    }
  }
  Instance instance;
};

constexpr int32_t kViewLine = 2, kActionSafeLine = 1;

TEST_F(ViewOverlay, OutlinesTheViewThickAndItsActionSafeFrameThin) {
  ExpectOutlines({{45, 10, 104, 49, kViewLine}, {48, 12, 101, 47, kActionSafeLine}});
}

TEST_F(ViewOverlay, TheActionSafeFrameNeedsBothItsFlags) {
  for (const auto& [shown, rendered] : {std::pair{false, true}, {true, false}, {false, false}}) {
    instance.settings.showActionSafe = shown;
    instance.renderFlag = rendered;
    ExpectOutlines({{45, 10, 104, 49, kViewLine}});
  }
}

}  // namespace
}  // namespace kelto
