#include "runtime/stills/tiff_unpack.h"

#include <algorithm>

#include "runtime/stills/color.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {
namespace {

/// Sample `x` of channel `i`; rows may begin at odd addresses.
template <typename T>
T Sample(const TiffRow& row, int i, uint32_t x) {
  T value;
  __builtin_memcpy(&value, row.first[static_cast<size_t>(i)] + x * row.step * sizeof(T), sizeof(T));
  return value;
}

/// Grey or three colours in words; those of one row lie `step` apart.
void SpreadWords(const TiffRow& row, int colors, bool alpha, uint16_t flip, uint32_t width,
                 uint8_t* to) {
  const size_t step = row.step * sizeof(uint16_t);
  const uint8_t* from[4];
  for (int i = 0; i < 3; ++i) from[i] = row.first[static_cast<size_t>(colors == 1 ? 0 : i)];
  from[3] = alpha ? row.first[static_cast<size_t>(colors)] : from[0];
  for (uint32_t x = 0; x < width; ++x, to += 8) {
    uint16_t pixel[4];
    for (int i = 0; i < 4; ++i) __builtin_memcpy(&pixel[i], from[i] + x * step, 2);
    for (int i = 0; i < 3; ++i) pixel[i] ^= flip;
    if (!alpha) pixel[3] = 65535;
    __builtin_memcpy(to, pixel, sizeof pixel);
  }
}

PixelFormat FormatFor(const TiffForm& form, TiffDepth depth) {
  const bool deep = form.bits == 16 && depth != TiffDepth::kBytes;
  if (form.floats) return depth == TiffDepth::kAll ? PixelFormat::kRgbaFloat : PixelFormat::kRgba16;
  if (form.colors == 4) {
    return deep && depth == TiffDepth::kAll ? PixelFormat::kCmyka16 : PixelFormat::kCmyka8;
  }
  return deep ? PixelFormat::kRgba16 : PixelFormat::kBgra8;
}

/// To the nearest word; what lies outside 0..1 is cut off, and what is no number is 0.
uint16_t WordOf(float value) {
  return value > 0.0f ? static_cast<uint16_t>(std::min(value, 1.0f) * 65535.0f + 0.5f) : 0;
}

}  // namespace

TiffUnpacker::TiffUnpacker(TiffFile& tiff, const TiffForm& form, TiffDepth depth) : form_(form) {
  format_ = FormatFor(form, depth);
  if (form.bits < 8) bytes_.resize(form.width);
  if (form.photometric != PHOTOMETRIC_PALETTE) return;

  uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
  if (!TIFFGetField(tiff.get(), TIFFTAG_COLORMAP, &red, &green, &blue)) {
    throw StillError(codecBadDataErr, "damaged TIFF (its palette is missing)");
  }
  const int count = 1 << form.bits;
  bool full_scale = false;
  for (int i = 0; i < count; ++i) full_scale |= red[i] > 255 || green[i] > 255 || blue[i] > 255;
  // Palettes have 16 bits, but some programs write 8-bit values.
  for (int i = 0; i < count; ++i) {
    for (const uint16_t* channel : {red, green, blue}) {
      palette_.push_back(full_scale ? To8(channel[i]) : static_cast<uint8_t>(channel[i]));
    }
  }
}

void TiffUnpacker::Unpack(const TiffRow& row, uint8_t* to) {
  if (form_.floats) {
    SpreadFloats(row, to);
  } else if (format_ == PixelFormat::kRgba16) {
    SpreadWords(row, form_.colors, form_.used_count > form_.colors,
                form_.photometric == PHOTOMETRIC_MINISWHITE ? 65535 : 0, form_.width, to);
  } else if (form_.bits == 16) {
    Spread<uint16_t>(row, to);
  } else {
    Spread<uint8_t>(form_.bits == 8 ? row : UnpackBits(row), to);
  }
}

TiffRow TiffUnpacker::UnpackBits(const TiffRow& row) {
  const unsigned bits = form_.bits, full = (1u << bits) - 1;
  const unsigned scale = palette_.empty() ? 255 / full : 1;
  for (uint32_t x = 0; x < form_.width; ++x) {
    const size_t at = x * size_t{bits};
    const unsigned shift = 8 - bits - static_cast<unsigned>(at % 8);
    bytes_[x] = static_cast<uint8_t>((row.first[0][at / 8] >> shift & full) * scale);
  }
  return {{bytes_.data()}, 1};
}

template <typename T>
void TiffUnpacker::Spread(const TiffRow& row, uint8_t* to) const {
  constexpr T kFull = static_cast<T>(~T{0});
  const T flip = form_.photometric == PHOTOMETRIC_MINISWHITE ? kFull : T{0};
  const size_t pixel_bytes = BytesPerPixel(format_);
  for (uint32_t x = 0; x < form_.width; ++x, to += pixel_bytes) {
    T color[4] = {};
    for (int i = 0; i < form_.colors; ++i) color[i] = Sample<T>(row, i, x) ^ flip;
    const T alpha = form_.used_count > form_.colors ? Sample<T>(row, form_.colors, x) : kFull;
    if (format_ == PixelFormat::kCmyka8) {
      for (int i = 0; i < 4; ++i) to[i] = To8(color[i]);
      to[4] = To8(alpha);
      continue;
    }
    if (format_ == PixelFormat::kCmyka16) {
      const uint16_t pixel[] = {color[0], color[1], color[2], color[3], alpha};
      __builtin_memcpy(to, pixel, sizeof pixel);
      continue;
    }
    if (form_.colors == 1) color[1] = color[2] = color[0];
    const uint8_t* entry = palette_.empty() ? nullptr : &palette_[color[0] * size_t{3}];
    for (int i = 0; i < 3; ++i) to[2 - i] = entry != nullptr ? entry[i] : To8(color[i]);
    to[3] = To8(alpha);
  }
}

void TiffUnpacker::SpreadFloats(const TiffRow& row, uint8_t* to) const {
  const bool flipped = form_.photometric == PHOTOMETRIC_MINISWHITE;
  const size_t pixel_bytes = BytesPerPixel(format_);
  for (uint32_t x = 0; x < form_.width; ++x, to += pixel_bytes) {
    float pixel[4];
    for (int i = 0; i < 3; ++i) {
      const float sample = Sample<float>(row, i < form_.colors ? i : 0, x);
      pixel[i] = flipped ? 1.0f - sample : sample;
    }
    pixel[3] = form_.used_count > form_.colors ? Sample<float>(row, form_.colors, x) : 1.0f;
    if (format_ == PixelFormat::kRgbaFloat) {
      __builtin_memcpy(to, pixel, sizeof pixel);
      continue;
    }
    uint16_t words[4];
    std::transform(pixel, pixel + 4, words, WordOf);
    __builtin_memcpy(to, words, sizeof words);
  }
}

}  // namespace kelto::stills
