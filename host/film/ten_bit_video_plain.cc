// Raw ten bits without the FFmpeg libraries.
#include <algorithm>
#include <cmath>
#include <vector>

#include "host/files/output_file.h"
#include "host/film/colour_matrix.h"
#include "host/film/ten_bit_video.h"

namespace kelto::host {
namespace {

/// The weights of red and blue in luma (ITU-R BT.601-7, 2.5.1; BT.709-6, 3.2).
struct LumaWeights {
  double red, blue;
};

LumaWeights WeightsFor(FrameSize size) {
  return MatrixFor(size) == ColourMatrix::kBt709 ? LumaWeights{0.2126, 0.0722}
                                                 : LumaWeights{0.299, 0.114};
}

uint16_t TenBits(double level) {
  return static_cast<uint16_t>(std::lround(std::clamp(level, 0.0, 1023.0)));
}

/// Colour differences for every other pixel: the cubic kernel with which FFmpeg's libswscale halves
/// a row, a = -0.6, whose middle lies on the pixel.
void HalveRow(const std::vector<double>& row, uint16_t* to) {
  constexpr double kRange = 896.0, kMiddle = 512.0;
  constexpr double kCentre = 0.5, kBeside = 0.2875, kThird = -0.0375;  // at 2 pixels it is 0
  const auto last = static_cast<ptrdiff_t>(row.size()) - 1;
  const auto at = [&](ptrdiff_t x) {
    return row[static_cast<size_t>(std::clamp<ptrdiff_t>(x, 0, last))];
  };
  for (ptrdiff_t x = 0; x <= last; x += 2, ++to) {
    const double part =
        kCentre * at(x) + kBeside * (at(x - 1) + at(x + 1)) + kThird * (at(x - 3) + at(x + 3));
    *to = TenBits(kMiddle + kRange * part);
  }
}

class RawTenBitPlanes final : public FrameSink {
 public:
  explicit RawTenBitPlanes(const FilmRequest& request)
      : file_(request.output), weights_(WeightsFor(request.format.size)) {
    const auto width = static_cast<size_t>(request.format.size.width);
    const auto height = static_cast<size_t>(request.format.size.height);
    luma_.resize(width * height);
    cb_.resize(width / 2 * height);
    cr_.resize(width / 2 * height);
    blueRow_.resize(width);
    redRow_.resize(width);
  }

  void Write(const FrameView& frame) override {
    for (int32_t y = 0; y < frame.size.height; ++y) FillRow(frame, static_cast<size_t>(y));
    for (const std::vector<uint16_t>* plane : {&luma_, &cb_, &cr_}) {
      file_.Write(plane->data(), plane->size() * sizeof(uint16_t));
    }
  }
  void Finish() override { file_.Finish(); }

 private:
  void FillRow(const FrameView& frame, size_t y) {
    constexpr double kFull = 65535.0, kRange = 876.0, kBlack = 64.0;
    const void* const row = frame.Row(static_cast<int32_t>(y));
    const auto* pixel = static_cast<const uint16_t*>(row);
    const size_t width = blueRow_.size();
    for (size_t x = 0; x < width; ++x, pixel += 4) {
      const double red = pixel[0] / kFull, green = pixel[1] / kFull, blue = pixel[2] / kFull;
      const double luma =
          weights_.red * red + weights_.blue * blue + (1.0 - weights_.red - weights_.blue) * green;
      luma_[y * width + x] = TenBits(kBlack + kRange * luma);
      blueRow_[x] = (blue - luma) / (2.0 * (1.0 - weights_.blue));
      redRow_[x] = (red - luma) / (2.0 * (1.0 - weights_.red));
    }
    HalveRow(blueRow_, &cb_[y * (width / 2)]);
    HalveRow(redRow_, &cr_[y * (width / 2)]);
  }

  OutputFile file_;
  LumaWeights weights_;
  std::vector<uint16_t> luma_, cb_, cr_;
  std::vector<double> blueRow_, redRow_;  ///< colour differences, -0.5 to 0.5
};

}  // namespace

std::unique_ptr<FrameSink> OpenRawYuv422P10(const FilmRequest& request) {
  return std::make_unique<RawTenBitPlanes>(request);
}

}  // namespace kelto::host
