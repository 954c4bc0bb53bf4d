#include "host/video/frame_converter.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cmath>

#include "host/base/error.h"

namespace kelto::host {
namespace {

/// Shapes that differ by less than this are the same, rounded.
constexpr double kSameShape = 0.004;

/// The multiple of `step` nearest to `value`, from `step` to `whole`.
int32_t Rounded(double value, int32_t step, int32_t whole) {
  const auto steps = static_cast<int32_t>(std::lround(value / step));
  return std::clamp(steps * step, std::min(step, whole), whole);
}

/// The beginning of a part in the middle of `whole`, a multiple of `step`.
int32_t Middle(int32_t part, int32_t whole, int32_t step) {
  return (whole - part) / 2 / step * step;
}

uint8_t ToByte(int32_t value, int32_t shift) {
  return static_cast<uint8_t>(std::clamp((value + (1 << (shift - 1))) >> shift, 0, 255));
}

/// A row of ten-bit 4:2:2 as Y Cb Y Cr.
void PackRow(const uint16_t* luma, const uint16_t* cbRow, const uint16_t* crRow, int32_t pairs,
             const VideoMap& map, uint8_t* to) {
  constexpr int32_t kShift = ChromaMap::kShift + 2;
  constexpr int32_t kMiddle = 128 << kShift;
  const ChromaMap& chroma = map.chroma;
  for (int32_t i = 0; i < pairs; ++i, luma += 2, to += 4) {
    const int32_t cb = cbRow[i] - 512;
    const int32_t cr = crRow[i] - 512;
    const int32_t base = (16 << kShift) + chroma.lumaCb * cb + chroma.lumaCr * cr;
    to[0] = ToByte(base + map.lumaGain * (luma[0] - 4 * map.lumaBlack), kShift);
    to[1] = ToByte(kMiddle + chroma.cbCb * cb + chroma.cbCr * cr, kShift);
    to[2] = ToByte(base + map.lumaGain * (luma[1] - 4 * map.lumaBlack), kShift);
    to[3] = ToByte(kMiddle + chroma.crCb * cb + chroma.crCr * cr, kShift);
  }
}

/// A row of words of RGB, of which `white` is white, made opaque.
void WidenRow(const uint16_t* from, int32_t width, uint32_t white, uint16_t* to) {
  constexpr int kFraction = 32;
  const uint64_t gain = ((uint64_t{65535} << kFraction) + white / 2) / white;
  const auto widened = [=](uint64_t word) {
    return static_cast<uint16_t>(
        std::min<uint64_t>(65535, (word * gain + (uint64_t{1} << (kFraction - 1))) >> kFraction));
  };
  for (; width > 0; --width, from += 4, to += 4) {
    for (int c = 0; c < 3; ++c) to[c] = widened(from[c]);
    to[3] = 65535;
  }
}

/// A row of BGRA as words of RGBA, made opaque.
void WidenBytes(const uint8_t* from, int32_t width, uint16_t* to) {
  for (; width > 0; --width, from += 4, to += 4) {
    for (int c = 0; c < 3; ++c) to[c] = static_cast<uint16_t>(from[2 - c] * 257);
    to[3] = 65535;
  }
}

template <typename Sample>
const Sample* RowOf(const AVFrame& frame, int plane, int32_t row) {
  return reinterpret_cast<const Sample*>(frame.data[plane] +
                                         row * static_cast<ptrdiff_t>(frame.linesize[plane]));
}

}  // namespace

FrameConverter::FrameConverter(const std::string& path, const VideoInfo& info,
                               const Orientation& turn, const FilmFormat& film, PixelLayout layout,
                               VideoFit fit)
    : path_(path),
      turn_(turn),
      layout_(layout),
      interlaced_(film.Interlaced()),
      film_(film.size),
      stored_(turn.transposed ? FrameSize{info.size.height, info.size.width} : info.size) {
  target_ = {0, 0, film_.width, film_.height};
  source_ = {0, 0, stored_.width, stored_.height};
  const auto shapeOf = [](FrameSize size, SampleAspect aspect) {
    return aspect.Ratio() * size.width / size.height;
  };
  // How much wider the video is than the film.
  const double shape =
      shapeOf(info.size, info.sampleAspect) / shapeOf(film.size, film.sampleAspect);
  if (std::abs(shape - 1.0) < kSameShape) return;
  if (fit == VideoFit::kWhole) {
    PlaceWhole(shape);
  } else {
    CropToFill(shape);
  }
}

void FrameConverter::PlaceWhole(double shape) {
  const int32_t rowStep = interlaced_ ? 4 : 2;
  if (shape > 1.0) {
    target_.height = Rounded(film_.height / shape, rowStep, film_.height);
    target_.top = Middle(target_.height, film_.height, 2);
  } else {
    target_.width = Rounded(film_.width * shape, 2, film_.width);
    target_.left = Middle(target_.width, film_.width, 2);
  }
}

void FrameConverter::CropToFill(double shape) {
  // Multiples of four keep chroma samples and fields whole.
  constexpr int32_t kStep = 4;
  const bool cutsRows = (shape > 1.0) == turn_.transposed;
  const double kept = shape > 1.0 ? 1.0 / shape : shape;
  if (cutsRows) {
    source_.height = Rounded(stored_.height * kept, kStep, stored_.height);
    source_.top = Middle(source_.height, stored_.height, kStep);
  } else {
    source_.width = Rounded(stored_.width * kept, kStep, stored_.width);
    source_.left = Middle(source_.width, stored_.width, kStep);
  }
}

Owned<AVFrame> FrameConverter::Cut(const AVFrame& picture, PicturePart part) const {
  auto cut = Own(av_frame_clone(&picture));
  // A size that changes within a video is scaled as a whole.
  if (FrameSize{picture.width, picture.height} == stored_) {
    cut->crop_left = static_cast<size_t>(source_.left);
    cut->crop_top = static_cast<size_t>(source_.top);
    cut->crop_right = static_cast<size_t>(stored_.width - source_.left - source_.width);
    cut->crop_bottom = static_cast<size_t>(stored_.height - source_.top - source_.height);
    if (av_frame_apply_cropping(cut.get(), AV_FRAME_CROP_UNALIGNED) < 0) throw std::bad_alloc();
  }
  if (part == PicturePart::kWhole) return cut;
  for (int plane = 0; plane < AV_NUM_DATA_POINTERS && cut->data[plane] != nullptr; ++plane) {
    if (part == PicturePart::kBottomField) cut->data[plane] += cut->linesize[plane];
    cut->linesize[plane] *= 2;
  }
  cut->height /= 2;
  return cut;
}

void FrameConverter::Convert(const AVFrame& picture, PicturePart part, const MutableFrame& to) {
  const auto cut = Cut(picture, part);
  // A field of a film has half of the frame's rows.
  const int32_t rows = film_.height / to.size.height;
  const MutableFrame area{to.pixels + target_.top / rows * to.rowBytes +
                              static_cast<ptrdiff_t>(target_.left) * BytesPerPixel(layout_),
                          to.rowBytes,
                          {target_.width, target_.height / rows}};
  if (!(area.size == to.size)) FillBlack(to);
  int width = area.size.width, height = area.size.height;
  if (turn_.transposed) std::swap(width, height);
  const AVFrame* scaled = scaler_.Scale(*cut, part, width, height, ScaledFormat(*cut));
  if (scaled != nullptr && !turn_.Upright()) {
    scaled = &Turned(*scaled);
    if (layout_ == PixelLayout::kYCbYCr) {
      scaled = turnedScaler_.Scale(*scaled, PicturePart::kWhole, scaled->width, scaled->height,
                                   AV_PIX_FMT_YUV422P10);
    }
  }
  if (scaled == nullptr) {
    const char* name = av_get_pix_fmt_name(static_cast<AVPixelFormat>(picture.format));
    throw Error(path_ + ": its pixels are of a form that cannot be converted, " +
                (name == nullptr ? "unknown" : name));
  }
  Pack(*scaled, *cut, area);
}

AVPixelFormat FrameConverter::ScaledFormat(const AVFrame& picture) const {
  if (layout_ == PixelLayout::kYCbYCr) {
    return turn_.Upright() ? AV_PIX_FMT_YUV422P10 : AV_PIX_FMT_YUV444P10;
  }
  // Levels of eight bits stay what they are, so that films of eight bits show them undithered.
  return layout_ == PixelLayout::kRgba16 && IsDeep(picture) ? AV_PIX_FMT_RGBA64 : AV_PIX_FMT_BGRA;
}

const AVFrame& FrameConverter::Turned(const AVFrame& scaled) {
  const int width = turn_.transposed ? scaled.height : scaled.width;
  const int height = turn_.transposed ? scaled.width : scaled.height;
  if (!turned_ || turned_->format != scaled.format) {
    turned_ = Own(av_frame_alloc());
    turned_->width = width;
    turned_->height = height;
    turned_->format = scaled.format;
    if (av_frame_get_buffer(turned_.get(), 0) < 0) throw std::bad_alloc();
  }
  const bool bytes = scaled.format == AV_PIX_FMT_BGRA, words = scaled.format == AV_PIX_FMT_RGBA64;
  const auto turn = bytes   ? &TurnPlane<uint32_t>
                    : words ? &TurnPlane<uint64_t>
                            : &TurnPlane<uint16_t>;
  for (int plane = 0; plane < (bytes || words ? 1 : 3); ++plane) {
    turn(turn_, scaled.data[plane], scaled.linesize[plane], turned_->data[plane],
         turned_->linesize[plane], width, height);
  }
  return *turned_;
}

void FrameConverter::Pack(const AVFrame& scaled, const AVFrame& picture,
                          const MutableFrame& to) const {
  const Coding coding = CodingOf(picture);
  const VideoMap map = MapFrom(coding.matrix, coding.fullRange);
  const bool turned = turn_.transposed;
  const uint32_t white = scaled.format == AV_PIX_FMT_RGBA64
                             ? Scaler::WhiteOf(picture, turned ? scaled.height : scaled.width,
                                               turned ? scaled.width : scaled.height)
                             : 0;
  for (int32_t row = 0; row < to.size.height; ++row) {
    uint8_t* pixels = to.pixels + row * to.rowBytes;
    if (layout_ == PixelLayout::kYCbYCr) {
      PackRow(RowOf<uint16_t>(scaled, 0, row), RowOf<uint16_t>(scaled, 1, row),
              RowOf<uint16_t>(scaled, 2, row), to.size.width / 2, map, pixels);
      continue;
    }
    if (layout_ == PixelLayout::kRgba16) {
      void* const words = pixels;
      if (white == 0) {
        WidenBytes(RowOf<uint8_t>(scaled, 0, row), to.size.width, static_cast<uint16_t*>(words));
      } else {
        WidenRow(RowOf<uint16_t>(scaled, 0, row), to.size.width, white,
                 static_cast<uint16_t*>(words));
      }
      continue;
    }
    std::copy_n(RowOf<uint8_t>(scaled, 0, row), 4 * to.size.width, pixels);
    // What lies behind a transparent video nobody knows.
    for (int32_t x = 0; x < to.size.width; ++x) pixels[4 * x + 3] = 255;
  }
}

void FrameConverter::FillBlack(const MutableFrame& to) const {
  for (int32_t row = 0; row < to.size.height; ++row) {
    uint8_t* pixel = to.pixels + row * to.rowBytes;
    for (int32_t x = 0; x < to.size.width; ++x, pixel += BytesPerPixel(layout_)) {
      if (layout_ == PixelLayout::kYCbYCr) {
        pixel[0] = 16;
        pixel[1] = 128;
      } else if (layout_ == PixelLayout::kRgba16) {
        std::fill_n(pixel, 6, uint8_t{0});
        std::fill_n(pixel + 6, 2, uint8_t{255});
      } else {
        std::fill_n(pixel, 3, uint8_t{0});
        pixel[3] = 255;
      }
    }
  }
}

}  // namespace kelto::host
