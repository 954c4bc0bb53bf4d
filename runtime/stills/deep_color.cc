#include "runtime/stills/deep_color.h"

#include <algorithm>
#include <cstring>

#include "runtime/stills/lcms_profile.h"

namespace kelto::stills {
namespace {

constexpr uint32_t kWiden = 257;  // 255 to 65535

/// A row's layout in Little CMS's terms; grey is the first of the samples of a colour.
cmsUInt32Number DeepLcmsType(PixelFormat format, bool grey) {
  const cmsUInt32Number three = COLORSPACE_SH(PT_GRAY) | CHANNELS_SH(1) | EXTRA_SH(3);
  switch (format) {
    case PixelFormat::kBgra8:
      return grey ? three | BYTES_SH(1) : TYPE_BGRA_8;
    case PixelFormat::kRgba16:
      return grey ? three | BYTES_SH(2) : TYPE_RGBA_16;
    case PixelFormat::kRgbaFloat:
      return grey ? three | BYTES_SH(4) | FLOAT_SH(1) : TYPE_RGBA_FLT;
    case PixelFormat::kCmyka8:
      return COLORSPACE_SH(PT_CMYK) | EXTRA_SH(1) | CHANNELS_SH(4) | BYTES_SH(1);
    case PixelFormat::kCmyka16:
      break;
  }
  return COLORSPACE_SH(PT_CMYK) | EXTRA_SH(1) | CHANNELS_SH(4) | BYTES_SH(2);
}

uint16_t MultiplyWords(uint32_t a, uint32_t b) {
  return static_cast<uint16_t>((uint64_t{a} * b + 32767) / 65535);
}

void WidenBgra(const uint8_t* from, uint16_t* to, uint32_t pixels) {
  for (uint32_t i = 0; i < pixels; ++i, from += 4, to += 4) {
    to[0] = static_cast<uint16_t>(from[2] * kWiden);
    to[1] = static_cast<uint16_t>(from[1] * kWiden);
    to[2] = static_cast<uint16_t>(from[0] * kWiden);
    to[3] = static_cast<uint16_t>(from[3] * kWiden);
  }
}

/// Without a profile, ink is CMY darkened by K. `scale` brings a sample to 65535.
template <typename T>
void InkToWords(const T* from, uint32_t scale, uint16_t* to, uint32_t pixels) {
  for (uint32_t i = 0; i < pixels; ++i, from += 5, to += 4) {
    const uint32_t light = 65535 - from[3] * scale;
    for (int c = 0; c < 3; ++c) to[c] = MultiplyWords(65535 - from[c] * scale, light);
    to[3] = static_cast<uint16_t>(from[4] * scale);
  }
}

/// Alpha of rows that Little CMS took for grey, whose fourth sample it is in all layouts.
void CopyGreyAlpha(PixelFormat format, const void* from, void* to, uint32_t pixels) {
  for (size_t i = 3; i < size_t{pixels} * 4; i += 4) {
    if (format == PixelFormat::kRgbaFloat) {
      static_cast<float*>(to)[i] = static_cast<const float*>(from)[i];
    } else if (format == PixelFormat::kRgba16) {
      static_cast<uint16_t*>(to)[i] = static_cast<const uint16_t*>(from)[i];
    } else {
      static_cast<uint16_t*>(to)[i] =
          static_cast<uint16_t>(static_cast<const uint8_t*>(from)[i] * kWiden);
    }
  }
}

}  // namespace

DeepColorConverter::DeepColorConverter(std::span<const uint8_t> icc, ColorModel model,
                                       PixelFormat format)
    : format_(format) {
  if (icc.empty()) return;
  context_ = std::make_shared<LcmsContext>(icc.size());
  const cmsContext context = RawContext(*context_);
  const Profile profile(
      cmsOpenProfileFromMemTHR(context, icc.data(), static_cast<cmsUInt32Number>(icc.size())));
  const Profile srgb(cmsCreate_sRGBProfileTHR(context));
  context_->CheckMemory();
  if (!profile || !srgb) return;

  const uint32_t space = ColorSpaceOf(icc);
  grey_ = space == cmsSigGrayData && model == ColorModel::kGrey;
  const bool rgb = space == cmsSigRgbData && model != ColorModel::kCmyk;
  const bool ink = space == cmsSigCmykData && model == ColorModel::kCmyk;
  const bool known = rgb && IsSrgbInEffect(profile.get(), srgb.get());
  if ((grey_ || rgb || ink) && !known) {
    // Unoptimized: the optimized forms interpolate between few levels, or compute with 14 bits.
    const cmsUInt32Number flags =
        cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_NOOPTIMIZE | (grey_ ? 0u : cmsFLAGS_COPY_ALPHA);
    transform_ = Transform(cmsCreateTransformTHR(
        context, profile.get(), DeepLcmsType(format, grey_), srgb.get(),
        format == PixelFormat::kRgbaFloat ? TYPE_RGBA_FLT : TYPE_RGBA_16, kColorIntent, flags));
  }
  context_->CheckMemory();
}

void DeepColorConverter::Convert(const void* from, void* to, uint32_t pixels) const {
  if (transform_ != nullptr && grey_) {
    // Its rows have the alpha yet when Little CMS has been over them: in place, it leaves it alone.
    cmsDoTransform(transform_.get(), from, to, pixels);
    if (from != to) CopyGreyAlpha(format_, from, to, pixels);
    return;
  }
  if (transform_ != nullptr) {
    cmsDoTransform(transform_.get(), from, to, pixels);
    return;
  }
  uint16_t* words = static_cast<uint16_t*>(to);
  switch (format_) {
    case PixelFormat::kBgra8:
      return WidenBgra(static_cast<const uint8_t*>(from), words, pixels);
    case PixelFormat::kCmyka8:
      return InkToWords(static_cast<const uint8_t*>(from), kWiden, words, pixels);
    case PixelFormat::kCmyka16:
      return InkToWords(static_cast<const uint16_t*>(from), 1, words, pixels);
    case PixelFormat::kRgba16:
    case PixelFormat::kRgbaFloat:
      if (from != to) std::memcpy(to, from, pixels * BytesPerPixel(format_));
  }
}

}  // namespace kelto::stills
