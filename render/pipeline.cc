#include "render/pipeline.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "framing/frame_rects.h"
#include "image/cache.h"
#include "platform/pxcfx.h"
#include "render/outline.h"
#include "resample/resample.h"

namespace kelto {
namespace {

constexpr double kRealTimeQuality = 0.5;

/// A pixel layout in the terms of the conversion library.
struct Layout {
  const char* tag;
  pxcColorSpace colorSpace;
  int32_t bytesPerPixel;
};

constexpr Layout kBgra = {"BGRA", pxcColorSpaceRGB, 4};
constexpr Layout k422 = {"Y422", pxcColorSpaceYCbCr, 2};

/// Converts an image's rows in place through a buffer, each by the image's own row delta, so that
/// padded and bottom-up images keep what lies between their rows.
template <typename Conversion>
void ConvertRowsInPlace(hfxImage& image, PixelSize size, const Layout& from, const Layout& to) {
  const size_t rowBytes = static_cast<size_t>(size.width) * to.bytesPerPixel;
  const auto buffer = std::make_unique_for_overwrite<uint8_t[]>(rowBytes * size.height);
  pxcImage source(size.width, size.height, from.tag, image.GetRowPtr(0), pxcComponent8U,
                  from.colorSpace);
  source.SetPixelArray(image.GetRowPtr(0), image.GetRowDelta());
  pxcImage converted(size.width, size.height, to.tag, buffer.get(), pxcComponent8U, to.colorSpace);
  Conversion().Execute(source, converted);
  for (int32_t y = 0; y < size.height; ++y) {
    std::memcpy(image.GetRowPtr(y), buffer.get() + y * rowBytes, rowBytes);
  }
}

/// The current output as far as geometry goes.
FrameGeometry GeometryOf(const PanZoomState& state, const hfxImage& output) {
  FrameGeometry frame;
  frame.output = {output.GetWidth(), output.GetHeight()};
  frame.fieldMode = state.GetFieldMode();
  frame.displayAspect = state.GetDisplayAspect();
  frame.squarePixels = state.settings.squarePixels;
  frame.videoType = state.GetVideoType();
  return frame;
}

/// What every job of a frame has in common: destination, field and layout.
ResampleJob JobFor(const PanZoomState& state, hfxImage& output, PixelSize size) {
  ResampleJob job;
  const int32_t fieldMode = state.GetFieldMode();
  const bool oneField = fieldMode == hfxFieldModeSeparate;
  // The engine works in frame rows; for one field the buffer holds every second of them. RGB frames
  // too are drawn as 4:2:2, into the front of each row.
  job.dest = {output.GetRowPtr(0), size.width, oneField ? size.height * 2 : size.height,
              output.GetRowDelta()};
  job.fieldRows = !oneField ? kAllRows : state.IsTopField() ? kEvenRows : kOddRows;
  job.interlaceSelector = fieldMode;
  job.layoutCode = LayoutCode(output.GetImgFormat(), output.GetChannelType(0));
  return job;
}

/// Draws the job into the output and brings RGB outputs back from 4:2:2.
void Draw(const ResampleJob& job, hfxImage& output, PixelSize size, int32_t colorspace) {
  ResampleTo422(job);
  if (colorspace == hfxColorspaceRGB) {
    ConvertRowsInPlace<pxcYCbYCr2RGBA>(output, size, k422, kBgra);
  }
}

void SetPicture(ResampleJob& job, const IplImage* picture) {
  if (!picture || !picture->imageData) return;
  job.source = {reinterpret_cast<uint8_t*>(picture->imageData), picture->width, picture->height,
                picture->widthStep};
  // The cache holds Y, Cr, Cb; frames want Cb in even columns and Cr in odd ones.
  job.chroma = {2, 1};
}

void SetVideoBackground(ResampleJob& job, hfxImage& input, PixelSize size, int32_t colorspace) {
  // Without pixels the input still counts as video: all of it is black.
  const PixelSize video = {std::clamp(input.GetWidth(), 0, size.width),
                           std::clamp(input.GetHeight(), 0, size.height)};
  // Overwrites the host's RGB input, because that saves a copy of the frame.
  if (colorspace == hfxColorspaceRGB) {
    ConvertRowsInPlace<pxcRGBA2YCbYCr>(input, video, kBgra, k422);
  }
  job.background.videoRow0 = input.GetRowPtr(0);
  job.background.videoRowBytes = input.GetRowDelta();
  job.background.videoWidth = video.width;
  job.background.videoHeight = video.height;
}

/// Pixels between two inclusive bounds, which may lie the wrong way round, `limit` at the most.
int32_t Extent(int32_t first, int32_t last, int32_t limit) {
  return static_cast<int32_t>(std::clamp<int64_t>(int64_t{last} - first + 1, 0, limit));
}

bool Renderable(int32_t colorspace) {
  return colorspace == hfxColorspaceRGB || colorspace == hfxColorspaceYCbCr;
}

}  // namespace

// Both columns are bare numbers: of the hosts' formats the interface names two, of the codes none.
int32_t LayoutCode(int32_t imgFormat, int32_t channelType) {
  switch (imgFormat) {
    case -1:
    case 0:
    case 15:
      return 0;
    case 1:
      return 1;
    case 3:
      return 2;
    case 6:
      return 3;
    case 4:
      return 5;
    case 5:
      return 6;
    case 7:
      return 7;
    case 11:
      return 8;
    case 12:
      return 9;
    case 8:
    case 9:
      return channelType == 1 ? 11 : 10;
    case 10:
      return 11;
    default:
      return 4;
  }
}

void BackgroundBytes(const double rgb[3], int32_t levels, uint8_t bytes[3]) {
  for (int i = 0; i < 3; ++i) {
    const double scaled = rgb[i] * 255.0;
    const int byte = !(scaled > 0.0) ? 0 : scaled >= 255.0 ? 255 : static_cast<int>(scaled);
    bytes[i] = static_cast<uint8_t>(levels == kLevelsRGB ? std::clamp(byte, 16, 235) : byte);
  }
}

void RenderWithoutImage(PanZoomState& state) {
  hfxImage* output = state.GetOutput(0);
  if (!output) throw 1;
  const int32_t colorspace = output->GetColorspace();
  const PixelSize size = {output->GetWidth(), output->GetHeight()};
  if (!Renderable(colorspace) || size.width < 1 || size.height < 1) return;

  ResampleJob job = JobFor(state, *output, size);
  std::memset(job.background.bytes, state.settings.levels == kLevels601 ? 0 : 16, 3);
  const FrameRects rects =
      ComputeFrameRects(GeometryOf(state, *output), {0, 0}, {state.settings.view.zoom, 0.0, 0.0});
  job.sourceRect = rects.source;
  job.destRect = rects.target;
  Draw(job, *output, size, colorspace);
}

void RenderFrame(PanZoomState& state, const hfxRect& region) {
  hfxImage* input = state.GetInput(0);
  hfxImage* output = state.GetOutput(0);
  if (!input || !output) throw 1;
  const int32_t colorspace = input->GetColorspace();
  // Rows of one layout written into an image of the other would not fit.
  if (!Renderable(colorspace) || output->GetColorspace() != colorspace) return;
  const PixelSize size = {Extent(region.x0, region.x1, output->GetWidth()),
                          Extent(region.y0, region.y1, output->GetHeight())};
  if (size.width < 1 || size.height < 1) return;

  const bool showTarget = state.settings.display == kDisplayTarget;
  ResampleJob job = JobFor(state, *output, size);
  const IplImage* picture = SelectCachedLevel(state, *output);
  SetPicture(job, picture);
  if (state.settings.compositeOver == kOverColor) {
    BackgroundBytes(state.settings.backgroundColor, state.settings.levels, job.background.bytes);
  } else {
    SetVideoBackground(job, *input, size, colorspace);
  }
  // The source display is always drawn fast and whole.
  const bool fast = !showTarget || state.GetQuality() <= kRealTimeQuality;
  job.filterMode = fast ? static_cast<int32_t>(kFilterRealTime) : state.settings.filter;
  const View view = showTarget ? state.settings.view : View{};
  const FrameRects rects =
      ComputeFrameRects(GeometryOf(state, *output), {job.source.width, job.source.height}, view);
  job.sourceRect = rects.source;
  job.destRect = rects.target;

  Draw(job, *output, size, colorspace);
  if (state.settings.display == kDisplaySource && state.overlayOff != 1)
    DrawViewOverlay(state, *output, colorspace);
}

}  // namespace kelto
