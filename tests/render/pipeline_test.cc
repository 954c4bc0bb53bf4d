#include "render/pipeline.h"

#include <gtest/gtest.h>

#include "framing/frame_rects.h"
#include "image/cache.h"
#include "image/studio_levels.h"
#include "tests/support/instance.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

using test::Instance;
using test::Picture;

constexpr hfxRect Whole(int32_t width, int32_t height) { return {0, 0, width - 1, height - 1}; }

/// Puts an RGB picture (three bytes a pixel) into the instance's cache, as a load would.
void CachePicture(Instance& instance, const std::vector<uint8_t>& rgb, int32_t width,
                  int32_t height) {
  iplSetErrMode(IPL_ErrModeSilent);
  IplImage* bgra =
      iplCreateImageHeader(4, 0, IPL_DEPTH_8U, "RGBA", "BGRA", IPL_DATA_ORDER_PIXEL, IPL_ORIGIN_TL,
                           IPL_ALIGN_DWORD, width, height, nullptr, nullptr, nullptr, nullptr);
  iplAllocateImage(bgra, 1, 0);
  IplImage* cached =
      iplCreateImageHeader(4, 0, IPL_DEPTH_8U, "MSI", "MSI", IPL_DATA_ORDER_PIXEL, IPL_ORIGIN_TL,
                           IPL_ALIGN_QWORD, width, height, nullptr, nullptr, nullptr, nullptr);
  AllocateImageData(instance, cached);
  ASSERT_EQ(iplGetErrStatus(), IPL_StsOk);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      for (int32_t c = 0; c < 3; ++c) {
        uint8_t value = rgb[3 * (size_t{static_cast<uint32_t>(y)} * width + x) + c];
        if (instance.settings.levels == 0) value = studioLevelTable[value];
        bgra->imageData[y * bgra->widthStep + 4 * x + 2 - c] = static_cast<char>(value);
      }
    }
  }
  iplRGB2YCrCb(bgra, cached);
  iplDeallocate(bgra, IPL_IMAGE_ALL);
  instance.picture.workImages[0].reset(cached);
  instance.picture.imageWidth = width;
  instance.picture.imageHeight = height;
  instance.picture.cacheState = 1;
}

void SetUpFrame(Instance& instance, const nlohmann::json& p) {
  instance.settings.display = p["display"];
  instance.settings.view.zoom = p["zoom"];
  instance.settings.view.centreX = p["centre_x"];
  instance.settings.view.centreY = p["centre_y"];
  instance.settings.filter = p["filter"];
  instance.settings.levels = p["levels"];
  instance.settings.squarePixels = p["square_pixels"];
  instance.overlayOff = p["overlay_off"];
  for (int i = 0; i < 3; ++i) instance.settings.backgroundColor[i] = p["background"][i];
  hfx::RenderState& host = instance.host();
  host.quality = p["quality"];
  host.displayAspect = p["display_aspect"];
  host.videoType = p["video_type"];
  host.fieldMode = p["field_mode"];
  host.topField = p["is_top_field"];
}

int LargestDifference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  if (a.size() != b.size()) return 256;
  int largest = 0;
  for (size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
  return largest;
}

TEST(Pipeline, AgreesWithReferenceFramesInBothLayouts) {
  int index = 0;
  for (const auto& f : test::Vectors()["frames"]) {
    for (const int32_t colorspace : {hfxColorspaceYCbCr, hfxColorspaceRGB}) {
      Instance instance;
      SetUpFrame(instance, f["params"]);
      const int32_t width = f["params"]["output_width"], height = f["params"]["output_height"];
      Picture input(width, height, colorspace), output(width, height, colorspace, 12, true);
      hfx::SetInput(instance, 0, input.image());
      hfx::SetOutput(instance, 0, output.image());
      CachePicture(instance, test::Bytes(f["rgb"]), f["width"], f["height"]);
      if (f["play_mode"] != 0) {
        instance.render.playMode = f["play_mode"];
        instance.render.outputWidth = width;
        instance.render.outputHeight = height;
        ReduceToVideoResolution(instance);
      }
      RenderFrame(instance, Whole(width, height));
      const bool rgb = colorspace == hfxColorspaceRGB;
      EXPECT_LE(LargestDifference(output.Packed(), test::Bytes(f[rgb ? "bgra" : "yuv422"])), 2)
          << "frame " << index << (rgb ? " RGB" : " 4:2:2");
      EXPECT_TRUE(output.GuardsIntact());
    }
    ++index;
  }
  EXPECT_EQ(index, 8);
}

/// A grey picture with a bright spot, over a small frame.
class SmallFrame : public testing::Test {
 protected:
  static constexpr int32_t kWidth = 32, kHeight = 18;
  explicit SmallFrame(int32_t colorspace = hfxColorspaceYCbCr)
      : input(kWidth, kHeight, colorspace), output(kWidth, kHeight, colorspace) {
    instance.settings.display = 1;
    instance.host().displayAspect = 16.0 / 9.0;
    hfx::SetInput(instance, 0, input.image());
    hfx::SetOutput(instance, 0, output.image());
    for (int32_t y = 0; y < kHeight; ++y) {
      std::memset(input.row(y), 0x40 + y, input.image()->GetNumChannels() * kWidth);
    }
  }
  void CacheSpottedPicture() {
    std::vector<uint8_t> rgb(3 * 64 * 36, 90);
    for (int i = 0; i < 3; ++i) rgb[3 * (17 * 64 + 31) + i] = 250;
    CachePicture(instance, rgb, 64, 36);
  }
  std::vector<uint8_t> Render() {
    RenderFrame(instance, Whole(kWidth, kHeight));
    return output.Packed();
  }
  Instance instance;
  Picture input, output;
};

TEST_F(SmallFrame, QualityOfOneHalfIsRealTimeAndMoreUsesTheFilter) {
  CacheSpottedPicture();
  instance.settings.filter = kFilterRealTime;
  const auto realTime = Render();
  instance.settings.filter = kFilterUltraQual;
  instance.host().quality = 0.5;
  EXPECT_EQ(Render(), realTime);
  instance.host().quality = 0.51;
  EXPECT_NE(Render(), realTime);
}

TEST_F(SmallFrame, TheSourceDisplayIsAlwaysRealTimeAndWhole) {
  CacheSpottedPicture();
  instance.overlayOff = 1;
  instance.settings.filter = kFilterRealTime;
  const auto whole = Render();
  instance.settings.display = 0;
  instance.settings.filter = kFilterHiQual;
  instance.settings.view.zoom = 3.0;
  instance.settings.view.centreX = 0.2;
  EXPECT_EQ(Render(), whole);
}

TEST_F(SmallFrame, OutlinesAreDrawnOverTheSourceDisplayOnly) {
  CacheSpottedPicture();
  const auto target = Render();
  instance.overlayOff = 1;
  EXPECT_EQ(Render(), target);
  instance.settings.display = 0;
  const auto bare = Render();
  instance.overlayOff = 0;
  instance.settings.view.zoom = 2.0;
  const auto outlined = Render();
  EXPECT_NE(outlined, bare);
  instance.settings.showActionSafe = false;
  const auto viewOnly = Render();
  EXPECT_NE(viewOnly, outlined);
  EXPECT_NE(viewOnly, bare);
}

TEST(Background, FullColourIs255For601SourcesAnd235ForRgbOnes) {
  uint8_t bytes[3];
  const double colour[3] = {1.0, 0.999, 0.0};
  BackgroundBytes(colour, 1, bytes);
  EXPECT_EQ(bytes[0], 255);
  EXPECT_EQ(bytes[1], 254) << "truncated, not rounded";
  EXPECT_EQ(bytes[2], 0);
  BackgroundBytes(colour, 0, bytes);
  EXPECT_EQ(bytes[0], 235);
  EXPECT_EQ(bytes[1], 235);
  EXPECT_EQ(bytes[2], 16) << "clamped to studio range";
}

TEST_F(SmallFrame, SeparateFieldsRenderOnlyTheFieldTheHostNames) {
  CacheSpottedPicture();
  instance.settings.view.zoom = 2.0;
  instance.settings.filter = kFilterTriangle;
  const auto frame = Render();
  Picture field(kWidth, kHeight / 2, hfxColorspaceYCbCr, 8);
  hfx::SetOutput(instance, 0, field.image());
  instance.host().fieldMode = hfxFieldModeSeparate;
  for (const bool top : {true, false}) {
    instance.host().topField = top;
    RenderFrame(instance, Whole(kWidth, kHeight / 2));
    for (int32_t y = 0; y < kHeight / 2; ++y) {
      const std::vector<uint8_t> got(field.row(y), field.row(y) + 2 * kWidth);
      const auto from = frame.begin() + (2 * y + (top ? 0 : 1)) * 2 * kWidth;
      EXPECT_EQ(got, std::vector<uint8_t>(from, from + 2 * kWidth))
          << (top ? "top " : "bottom ") << y;
    }
    EXPECT_TRUE(field.GuardsIntact());
  }
}

TEST_F(SmallFrame, WithoutPictureOverVideoTheFrameIsBlackNotTheInput) {
  instance.settings.compositeOver = 1;
  for (const int32_t levels : {0, 1}) {
    instance.settings.levels = levels;
    RenderWithoutImage(instance);
    const auto bytes = output.Packed();
    for (size_t i = 0; i < bytes.size(); i += 2) {
      ASSERT_NEAR(bytes[i], levels == 0 ? 16 : 0, 1);
      ASSERT_NEAR(bytes[i + 1], 128, 1);
    }
  }
}

TEST_F(SmallFrame, WithoutPictureOverAColourTheFrameIsTheColour) {
  instance.settings.levels = 1;
  instance.settings.backgroundColor[0] = instance.settings.backgroundColor[1] =
      instance.settings.backgroundColor[2] = 0.5;
  const auto bytes = Render();
  for (size_t i = 0; i < bytes.size(); i += 2) {
    ASSERT_NEAR(bytes[i], 127, 1);
    ASSERT_NEAR(bytes[i + 1], 128, 1);
  }
}

TEST_F(SmallFrame, VideoShowsWhereThePictureDoesNotCover) {
  CacheSpottedPicture();
  instance.settings.compositeOver = 1;
  instance.settings.view.zoom = 0.5;
  instance.settings.filter = kFilterCubic;
  Render();
  for (const int32_t y : {0, 2, kHeight - 1}) {
    EXPECT_EQ(std::memcmp(output.row(y), input.row(y), 2 * kWidth), 0) << "row " << y;
  }
  EXPECT_NE(std::memcmp(output.row(9), input.row(9), 2 * kWidth), 0);
}

TEST_F(SmallFrame, AMissingInputOrOutputThrowsTheIntegerOne) {
  const auto thrown = [](auto&& call) {
    try {
      call();
    } catch (int code) {
      return code;
    }
    return 0;
  };
  hfx::SetInput(instance, 0, nullptr);
  EXPECT_EQ(thrown([&] { RenderFrame(instance, Whole(kWidth, kHeight)); }), 1);
  EXPECT_EQ(thrown([&] { RenderWithoutImage(instance); }), 0);
  hfx::SetInput(instance, 0, input.image());
  hfx::SetOutput(instance, 0, nullptr);
  EXPECT_EQ(thrown([&] { RenderFrame(instance, Whole(kWidth, kHeight)); }), 1);
  EXPECT_EQ(thrown([&] { RenderWithoutImage(instance); }), 1);
}

TEST_F(SmallFrame, OtherColourSpacesLeaveTheOutputUntouched) {
  CacheSpottedPicture();
  const auto before = output.Packed();
  hfxImage foreign(kWidth, kHeight, input.row(0), 2 * kWidth, 5, 2);
  hfx::SetInput(instance, 0, &foreign);
  EXPECT_EQ(Render(), before);
}

TEST_F(SmallFrame, AnInputAndAnOutputOfTwoColourSpacesLeaveBothUntouched) {
  CacheSpottedPicture();
  instance.settings.compositeOver = 1;
  // Padded, so that even rows of the wider layout would stay inside the buffer.
  Picture rgb(kWidth, kHeight, hfxColorspaceRGB), narrow(kWidth, kHeight, hfxColorspaceYCbCr, 64);
  for (const auto& [from, to] : {std::pair(&input, &rgb), std::pair(&rgb, &narrow)}) {
    hfx::SetInput(instance, 0, from->image());
    hfx::SetOutput(instance, 0, to->image());
    const auto inputBefore = from->Packed(), outputBefore = to->Packed();
    RenderFrame(instance, Whole(kWidth, kHeight));
    EXPECT_EQ(from->Packed(), inputBefore);
    EXPECT_EQ(to->Packed(), outputBefore);
    EXPECT_TRUE(to->GuardsIntact());
  }
}

TEST_F(SmallFrame, VideoSmallerThanTheFrameEndsWhereItsOwnPixelsDo) {
  instance.settings.compositeOver = 1;
  // Over the input's first rows and columns: what follows them there is not the video's.
  for (const auto& [width, height] :
       {std::pair(kWidth - 6, kHeight), {kWidth, kHeight - 5}, {kWidth, 0}, {0, kHeight}}) {
    hfxImage small(width, height, input.row(0), input.image()->GetRowDelta(), hfxColorspaceYCbCr,
                   hfxImgFormatYCbYCr);
    hfx::SetInput(instance, 0, &small);
    Render();
    for (int32_t y = 0; y < kHeight; ++y) {
      for (int32_t x = 0; x < kWidth; ++x) {
        const bool inside = x < width && y < height;
        ASSERT_EQ(output.row(y)[2 * x], inside ? input.row(y)[2 * x] : 16) << x << ", " << y;
        ASSERT_EQ(output.row(y)[2 * x + 1], inside ? input.row(y)[2 * x + 1] : 128);
      }
    }
  }
}

TEST_F(SmallFrame, ARegionLargerThanTheOutputIsCut) {
  CacheSpottedPicture();
  RenderFrame(instance, {-2147483647, 0, 2147483647, 4000});
  EXPECT_TRUE(output.GuardsIntact());
  EXPECT_TRUE(input.GuardsIntact());
}

class SmallRgbFrame : public SmallFrame {
 protected:
  SmallRgbFrame() : SmallFrame(hfxColorspaceRGB) {}
};

TEST_F(SmallRgbFrame, AnRgbInputUnderThePictureIsOverwrittenByIts422Form) {
  CacheSpottedPicture();
  const auto before = input.Packed();
  instance.settings.compositeOver = 0;
  Render();
  EXPECT_EQ(input.Packed(), before);
  instance.settings.compositeOver = 1;
  Render();
  EXPECT_NE(input.Packed(), before);
  EXPECT_TRUE(input.GuardsIntact());
}

TEST_F(SmallRgbFrame, OfAnRgbInputSmallerThanTheFrameOnlyItsOwnPixelsAreOverwritten) {
  instance.settings.compositeOver = 1;
  for (const auto& [width, height] :
       {std::pair(kWidth - 6, kHeight - 5), {kWidth, 0}, {0, kHeight}}) {
    const auto before = input.Packed();
    hfxImage small(width, height, input.row(0), input.image()->GetRowDelta(), hfxColorspaceRGB,
                   hfxImgFormatBGRA);
    hfx::SetInput(instance, 0, &small);
    Render();
    const auto after = input.Packed();
    for (size_t i = 0; i < before.size(); ++i) {
      const auto x = static_cast<int32_t>(i) % input.rowBytes();
      const auto y = static_cast<int32_t>(i) / input.rowBytes();
      if (y < height && x < 2 * width) continue;  // the 4:2:2 form: two bytes a pixel
      ASSERT_EQ(after[i], before[i]) << "row " << y << " byte " << x;
    }
    const uint8_t* corner = output.row(kHeight - 1) + 4 * (kWidth - 1);
    EXPECT_LE(corner[0] + corner[1] + corner[2], 6) << "black beyond the video";
  }
  EXPECT_TRUE(input.GuardsIntact());
}

TEST_F(SmallRgbFrame, WithoutPictureOverVideoTheFrameIsOpaqueBlack) {
  instance.settings.compositeOver = 1;
  RenderWithoutImage(instance);
  const auto bytes = output.Packed();
  for (size_t i = 0; i < bytes.size(); i += 4) {
    ASSERT_LE(bytes[i] + bytes[i + 1] + bytes[i + 2], 6);
    ASSERT_EQ(bytes[i + 3], 255);
  }
}

TEST(LayoutCode, FollowsTheHostsFormats) {
  EXPECT_EQ(LayoutCode(hfxImgFormatBGRA, 0), 4);
  EXPECT_EQ(LayoutCode(hfxImgFormatYCbYCr, 0), 10);
  EXPECT_EQ(LayoutCode(hfxImgFormatYCbYCr, 1), 11);
  EXPECT_EQ(LayoutCode(8, 0), 10);
  const std::pair<int, int> table[] = {{-1, 0}, {0, 0},   {15, 0}, {1, 1}, {3, 2},
                                       {6, 3},  {4, 5},   {5, 6},  {7, 7}, {11, 8},
                                       {12, 9}, {10, 11}, {13, 4}, {14, 4}};
  for (const auto& [format, code] : table) EXPECT_EQ(LayoutCode(format, 0), code) << format;
}

}  // namespace
}  // namespace kelto
