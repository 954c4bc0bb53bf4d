#include "framing/frame_rects.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "platform/hfx.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

/// A frame of a picture.
struct Framing {
  FrameGeometry frame;
  PixelSize picture;
  View view;

  FrameRects Rects() const { return ComputeFrameRects(frame, picture, view); }
  RectF Source() const { return Rects().source; }
};

Framing Landscape() {
  Framing framing;
  framing.picture = {2000, 1500};
  framing.frame.output = {1920, 1080};
  framing.frame.displayAspect = 16.0 / 9.0;
  return framing;
}

void ExpectRect(const RectF& rect, const nlohmann::json& tlbr, const char* what, size_t index) {
  const float got[4] = {rect.top, rect.left, rect.bottom, rect.right};
  for (int i = 0; i < 4; ++i) {
    const double want = tlbr[i];
    EXPECT_NEAR(got[i], want, 2e-3 + 2e-6 * std::abs(want))
        << what << ' ' << i << " of case " << index;
  }
}

TEST(FrameRects, AgreesWithReferenceRectangles) {
  size_t index = 0;
  for (const auto& r : test::Vectors()["rects"]) {
    FrameGeometry frame;
    frame.output = {r["output_width"], r["output_height"]};
    frame.fieldMode = r["field_mode"];
    frame.displayAspect = r["display_aspect"];
    frame.squarePixels = r["square_pixels"];
    frame.videoType = r["video_type"];
    const FrameRects rects = ComputeFrameRects(frame, {r["source_width"], r["source_height"]},
                                               {r["zoom"], r["centre_x"], r["centre_y"]});
    ExpectRect(rects.source, r["src"], "source", index);
    ExpectRect(rects.target, r["dst"], "target", index);
    ++index;
  }
  EXPECT_EQ(index, 20u);
}

TEST(FrameRects, ZoomOneOnALandscapePictureShowsFullWidthAndACentredBand) {
  const RectF source = Landscape().Source();
  EXPECT_FLOAT_EQ(source.left, 0.5f);
  EXPECT_FLOAT_EQ(source.right, 1999.5f);
  EXPECT_NEAR(source.bottom + 1 - source.top, 2000 / (16.0 / 9.0), 1e-3);
  EXPECT_NEAR(source.top + source.bottom, 1500, 1e-3);
}

TEST(FrameRects, APortraitPictureKeepsItsFullHeight) {
  Framing framing = Landscape();
  std::swap(framing.picture.width, framing.picture.height);
  const RectF source = framing.Source();
  EXPECT_FLOAT_EQ(source.top, 0.5f);
  EXPECT_FLOAT_EQ(source.bottom, 1999.5f);
  EXPECT_LT(source.left, 0.0f);
}

TEST(FrameRects, NoPictureGivesADegenerateSourceAndAWholeTarget) {
  Framing framing = Landscape();
  framing.picture = {0, 0};
  const FrameRects rects = framing.Rects();
  EXPECT_LE(rects.source.right, rects.source.left);
  EXPECT_LE(rects.source.bottom, rects.source.top);
  EXPECT_FLOAT_EQ(rects.target.right, 1919.5f);
  EXPECT_FLOAT_EQ(rects.target.bottom, 1079.5f);
}

TEST(FrameRects, OneFieldIsWorkedOutOnTheWholeFrame) {
  Framing framing = Landscape();
  framing.frame.output.height = 540;
  framing.frame.fieldMode = hfxFieldModeSeparate;
  EXPECT_FLOAT_EQ(framing.Rects().target.bottom, 1079.5f);
  framing.frame.fieldMode = hfxFieldModeInterleaved;
  EXPECT_FLOAT_EQ(framing.Rects().target.bottom, 539.5f);
}

TEST(FrameRects, NonSquarePixelsNarrow625LineVideoAndWidenAllOther) {
  Framing framing = Landscape();
  std::swap(framing.picture.width,
            framing.picture.height);  // by height: the width shows the aspect
  const auto width = [&] {
    const RectF r = framing.Source();
    return r.right + 1 - r.left;
  };
  const float square = width();
  framing.frame.squarePixels = false;
  framing.frame.videoType = hfxVideoType625;
  EXPECT_NEAR(width() / square, 0.9375, 1e-5);
  for (const int32_t type : {hfxVideoTypeProgressive, hfxVideoType525}) {
    framing.frame.videoType = type;
    EXPECT_NEAR(width() / square, 10.0 / 9.0, 1e-5);
  }
}

TEST(FrameRects, OnlyViewsThatAreStillMinifiedAreShiftedByTheAspect) {
  Framing framing = Landscape();
  framing.picture = {4000, 3000};
  framing.frame.output = {2000, 1000};
  framing.frame.displayAspect = 2.0;
  framing.view.zoom = 2.0;  // 2000 x 1000 source pixels for as many of the frame's: 1:1
  const RectF whole = framing.Source();
  EXPECT_EQ(whole.left + whole.right, 4000.0f);
  EXPECT_EQ(whole.top + whole.bottom, 3000.0f);
  framing.view.zoom = 1.5;
  const RectF minified = framing.Source();
  const double shift = 0.5 / 1.0 * 2.0;  // (zoom - 1) / (scale - 1) times the aspect
  EXPECT_NEAR(minified.left + minified.right, 4000.0 - 2 * shift, 1e-3);
  EXPECT_NEAR(minified.top + minified.bottom, 3000.0 - 2 * shift, 1e-3);
}

TEST(FrameRects, CentreMovesTheViewInBaseWidths) {
  Framing framing = Landscape();
  framing.picture = {1000, 800};
  const RectF middle = framing.Source();
  framing.view.centreX = 0.1;
  EXPECT_NEAR(framing.Source().left - middle.left, 100.0, 1e-3);
  framing.view.zoom = 2.0;
  const RectF zoomed = framing.Source();
  EXPECT_NEAR((zoomed.left + zoomed.right) / 2, 600.0, 1e-3);
}

}  // namespace
}  // namespace kelto
