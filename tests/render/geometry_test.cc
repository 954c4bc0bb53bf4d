#include "render/geometry.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/vectors.h"

namespace kelto {
namespace {

FrameGeometry Landscape() {
  FrameGeometry frame;
  frame.sourceWidth = 2000;
  frame.sourceHeight = 1500;
  frame.outputWidth = 1920;
  frame.outputHeight = 1080;
  frame.displayAspect = 16.0 / 9.0;
  return frame;
}

void ExpectRect(const RectF& rect, const nlohmann::json& tlbr, const char* what, size_t index) {
  const float got[4] = {rect.top, rect.left, rect.bottom, rect.right};
  for (int i = 0; i < 4; ++i) {
    const double want = tlbr[i];
    EXPECT_NEAR(got[i], want, 2e-3 + 2e-6 * std::abs(want))
        << what << ' ' << i << " of case " << index;
  }
}

TEST(Geometry, AgreesWithReferenceRectangles) {
  size_t index = 0;
  for (const auto& r : test::Vectors()["rects"]) {
    FrameGeometry frame;
    frame.sourceWidth = r["source_width"];
    frame.sourceHeight = r["source_height"];
    frame.outputWidth = r["output_width"];
    frame.outputHeight = r["output_height"];
    frame.fieldMode = r["field_mode"];
    frame.displayAspect = r["display_aspect"];
    frame.squarePixels = r["square_pixels"];
    frame.videoType = r["video_type"];
    frame.view = {r["zoom"], r["centre_x"], r["centre_y"]};
    const FrameRects rects = ComputeFrameRects(frame);
    ExpectRect(rects.source, r["src"], "source", index);
    ExpectRect(rects.target, r["dst"], "target", index);
    ++index;
  }
  EXPECT_EQ(index, 20u);
}

TEST(Geometry, ZoomOneOnALandscapePictureShowsFullWidthAndACentredBand) {
  const RectF source = ComputeFrameRects(Landscape()).source;
  EXPECT_FLOAT_EQ(source.left, 0.5f);
  EXPECT_FLOAT_EQ(source.right, 1999.5f);
  EXPECT_NEAR(source.bottom + 1 - source.top, 2000 / (16.0 / 9.0), 1e-3);
  EXPECT_NEAR(source.top + source.bottom, 1500, 1e-3);
}

TEST(Geometry, APortraitPictureKeepsItsFullHeight) {
  FrameGeometry frame = Landscape();
  std::swap(frame.sourceWidth, frame.sourceHeight);
  const RectF source = ComputeFrameRects(frame).source;
  EXPECT_FLOAT_EQ(source.top, 0.5f);
  EXPECT_FLOAT_EQ(source.bottom, 1999.5f);
  EXPECT_LT(source.left, 0.0f);
}

TEST(Geometry, NoPictureGivesADegenerateSourceAndAWholeTarget) {
  FrameGeometry frame = Landscape();
  frame.sourceWidth = frame.sourceHeight = 0;
  const FrameRects rects = ComputeFrameRects(frame);
  EXPECT_LE(rects.source.right, rects.source.left);
  EXPECT_LE(rects.source.bottom, rects.source.top);
  EXPECT_FLOAT_EQ(rects.target.right, 1919.5f);
  EXPECT_FLOAT_EQ(rects.target.bottom, 1079.5f);
}

TEST(Geometry, OneFieldIsWorkedOutOnTheWholeFrame) {
  FrameGeometry frame = Landscape();
  frame.outputHeight = 540;
  frame.fieldMode = hfxFieldModeSeparate;
  EXPECT_FLOAT_EQ(ComputeFrameRects(frame).target.bottom, 1079.5f);
  frame.fieldMode = hfxFieldModeInterleaved;
  EXPECT_FLOAT_EQ(ComputeFrameRects(frame).target.bottom, 539.5f);
}

TEST(Geometry, NonSquarePixelsNarrow625LineVideoAndWidenAllOther) {
  FrameGeometry frame = Landscape();
  std::swap(frame.sourceWidth, frame.sourceHeight);  // by height: the width shows the aspect
  const auto width = [&] {
    const RectF r = ComputeFrameRects(frame).source;
    return r.right + 1 - r.left;
  };
  const float square = width();
  frame.squarePixels = false;
  frame.videoType = hfxVideoType625;
  EXPECT_NEAR(width() / square, 0.9375, 1e-5);
  for (const int32_t type : {hfxVideoTypeProgressive, hfxVideoType525}) {
    frame.videoType = type;
    EXPECT_NEAR(width() / square, 10.0 / 9.0, 1e-5);
  }
}

TEST(Geometry, OnlyViewsThatAreStillMinifiedAreShiftedByTheAspect) {
  FrameGeometry frame = Landscape();
  frame.sourceWidth = 4000;
  frame.sourceHeight = 3000;
  frame.outputWidth = 2000;
  frame.outputHeight = 1000;
  frame.displayAspect = 2.0;
  frame.view.zoom = 2.0;  // 2000 x 1000 source pixels for as many of the frame's: 1:1
  const RectF whole = ComputeFrameRects(frame).source;
  EXPECT_EQ(whole.left + whole.right, 4000.0f);
  EXPECT_EQ(whole.top + whole.bottom, 3000.0f);
  frame.view.zoom = 1.5;
  const RectF minified = ComputeFrameRects(frame).source;
  const double shift = 0.5 / 1.0 * 2.0;  // (zoom - 1) / (scale - 1) times the aspect
  EXPECT_NEAR(minified.left + minified.right, 4000.0 - 2 * shift, 1e-3);
  EXPECT_NEAR(minified.top + minified.bottom, 3000.0 - 2 * shift, 1e-3);
}

TEST(Geometry, CentreMovesTheViewInBaseWidths) {
  FrameGeometry frame = Landscape();
  frame.sourceWidth = 1000;
  frame.sourceHeight = 800;
  const RectF middle = ComputeFrameRects(frame).source;
  frame.view.centreX = 0.1;
  EXPECT_NEAR(ComputeFrameRects(frame).source.left - middle.left, 100.0, 1e-3);
  frame.view.zoom = 2.0;
  const RectF zoomed = ComputeFrameRects(frame).source;
  EXPECT_NEAR((zoomed.left + zoomed.right) / 2, 600.0, 1e-3);
}

}  // namespace
}  // namespace kelto
