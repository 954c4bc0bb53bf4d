#include "host/film/dithered_sink.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "deep/dither.h"
#include "host/film/depth.h"

namespace kelto::host {
namespace {

/// A level of `range` steps above `black`, of a part of full scale of which one step is 65535.
uint8_t DitheredLevel(double part, double range, double black, int32_t threshold) {
  const double level = black + range * part + threshold / 65535.0;
  return static_cast<uint8_t>(std::clamp(level, 0.0, 255.0));
}

/// Luma and colour differences of a pixel, luma 0..1, by the BT.601 weights.
struct DeepColour {
  double luma, cb, cr;
};

DeepColour ColourOf(const uint16_t* pixel) {
  const double red = pixel[0] / 65535.0, green = pixel[1] / 65535.0, blue = pixel[2] / 65535.0;
  const double luma = 0.299 * red + 0.587 * green + 0.114 * blue;
  return {luma, (blue - luma) / 1.772, (red - luma) / 1.402};
}

/// The effect's 4:2:2: colour differences span as many levels as luma. Those of a pair stand at its
/// first pixel.
void DitherYCbYCrRow(const uint16_t* row, int32_t y, int32_t width, uint8_t* to) {
  constexpr double kRange = 219.0;
  DeepColour before = ColourOf(row), here = before;
  for (int32_t x = 0; x < width; x += 2, to += 4) {
    const DeepColour next = x + 1 < width ? ColourOf(row + size_t{4} * (x + 1)) : here;
    const double cb = (before.cb + 2.0 * here.cb + next.cb) / 4.0;
    const double cr = (before.cr + 2.0 * here.cr + next.cr) / 4.0;
    const int32_t first = DitherThreshold(x, y), second = DitherThreshold(x + 1, y);
    to[0] = DitheredLevel(here.luma, kRange, 16.0, first);
    to[1] = DitheredLevel(cb, kRange, 128.0, first);
    to[2] = DitheredLevel(next.luma, kRange, 16.0, second);
    to[3] = DitheredLevel(cr, kRange, 128.0, second);
    before = next;
    if (x + 2 < width) here = ColourOf(row + size_t{4} * (x + 2));
  }
}

class DitheredSink final : public FrameSink {
 public:
  DitheredSink(const FilmKind& kind, const FilmRequest& request)
      : frame_(request.format.size, FrameLayout(kind, request)), film_(kind.open(request)) {}

  void Write(const FrameView& frame) override { film_->Write(frame_.Of(frame)); }
  void Finish() override { film_->Finish(); }

 private:
  DitheredFrame frame_;
  std::unique_ptr<FrameSink> film_;
};

}  // namespace

DitheredFrame::DitheredFrame(FrameSize size, PixelLayout layout)
    : layout_(layout),
      rowBytes_(ptrdiff_t{size.width} * BytesPerPixel(layout)),
      bytes_(static_cast<size_t>(rowBytes_) * static_cast<size_t>(size.height)) {}

FrameView DitheredFrame::Of(const FrameView& deep) {
  const FrameSize size = deep.size;
  if (layout_ == PixelLayout::kYCbYCr) {
    for (int32_t y = 0; y < size.height; ++y) {
      const void* row = deep.Row(y);
      DitherYCbYCrRow(static_cast<const uint16_t*>(row), y, size.width, &bytes_[y * rowBytes_]);
    }
    return {bytes_.data(), rowBytes_, size};
  }
  const DeepSource source{
      deep.pixels, size.width, size.height, deep.rowBytes, DeepSample::kUnsigned16, true};
  DitherTo8Bits(source, bytes_.data(), rowBytes_);
  for (size_t i = 0; i < bytes_.size(); i += 4) std::swap(bytes_[i], bytes_[i + 2]);
  return {bytes_.data(), rowBytes_, size};
}

std::unique_ptr<FrameSink> DitherInto(const FilmKind& kind, const FilmRequest& request) {
  FilmRequest eight = request;
  eight.deep = false;
  return std::make_unique<DitheredSink>(kind, eight);
}

}  // namespace kelto::host
