#include "host/film/rgb_frames.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <vector>

#include "host/film/deep_frame.h"

namespace kelto::host {
namespace {

void FillRgb24(const FrameView& frame, const AVFrame& to) {
  for (int32_t y = 0; y < frame.size.height; ++y) {
    const uint8_t* from = frame.Row(y);
    uint8_t* pixel = to.data[0] + ptrdiff_t{y} * to.linesize[0];
    for (int32_t x = 0; x < frame.size.width; ++x, from += 4, pixel += 3) {
      std::reverse_copy(from, from + 3, pixel);
    }
  }
}

void FillArgb(const FrameView& frame, const AVFrame& to) {
  const std::vector<uint8_t> rgba = StraightBytes(frame);
  const uint8_t* from = rgba.data();
  for (int32_t y = 0; y < frame.size.height; ++y) {
    uint8_t* pixel = to.data[0] + ptrdiff_t{y} * to.linesize[0];
    for (int32_t x = 0; x < frame.size.width; ++x, from += 4, pixel += 4) {
      pixel[0] = from[3];
      std::copy_n(from, 3, pixel + 1);
    }
  }
}

/// Planes of words in the order green, blue, red, alpha.
void FillPlanarWords(const FrameView& frame, const AVFrame& to) {
  constexpr int kSampleOf[] = {1, 2, 0, 3};
  const int planes = to.format == AV_PIX_FMT_GBRAP16 ? 4 : 3;
  std::vector<uint16_t> rgba(size_t{4} * frame.size.width);
  for (int32_t y = 0; y < frame.size.height; ++y) {
    const void* const from = frame.Row(y);
    UnpremultiplyRow(static_cast<const uint16_t*>(from), frame.size.width, rgba.data());
    for (int i = 0; i < planes; ++i) {
      void* const row = to.data[i] + ptrdiff_t{y} * to.linesize[i];
      auto* const words = static_cast<uint16_t*>(row);
      for (int32_t x = 0; x < frame.size.width; ++x) words[x] = rgba[4 * x + kSampleOf[i]];
    }
  }
}

}  // namespace

bool IsRgb(AVPixelFormat format) {
  return (av_pix_fmt_desc_get(format)->flags & AV_PIX_FMT_FLAG_RGB) != 0;
}

void FillRgb(const FrameView& frame, const AVFrame& to) {
  if (to.format == AV_PIX_FMT_RGB24) return FillRgb24(frame, to);
  if (to.format == AV_PIX_FMT_ARGB) return FillArgb(frame, to);
  FillPlanarWords(frame, to);
}

}  // namespace kelto::host
