#include "runtime/stills/color.h"

#include <lcms2.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <numeric>

#include "runtime/stills/lcms_profile.h"

namespace kelto::stills {
namespace {

/// C, M, Y, K and one byte more, which is alpha.
constexpr cmsUInt32Number kTypeCmyka8 =
    COLORSPACE_SH(PT_CMYK) | EXTRA_SH(1) | CHANNELS_SH(4) | BYTES_SH(1);

/// To B, G, R, A of sRGB.
Transform MakeTransform(void* from, cmsUInt32Number from_type, void* to) {
  return Transform(cmsCreateTransformTHR(cmsGetProfileContextID(from), from, from_type, to,
                                         TYPE_BGRA_8, kColorIntent, kColorFlags));
}

cmsUInt32Number LcmsType(PixelFormat format) {
  switch (format) {
    case PixelFormat::kBgra8:
      return TYPE_BGRA_8;
    case PixelFormat::kRgba16:
      return TYPE_RGBA_16;
    default:
      return kTypeCmyka8;
  }
}

/// Plain conversions, for pictures without a profile.
void Rgba16ToBgra8(const uint16_t* from, uint8_t* to, uint32_t pixels) {
  for (uint32_t i = 0; i < pixels; ++i, from += 4, to += 4) {
    to[0] = To8(from[2]);
    to[1] = To8(from[1]);
    to[2] = To8(from[0]);
    to[3] = To8(from[3]);
  }
}

void Cmyka8ToBgra8(const uint8_t* from, uint8_t* to, uint32_t pixels) {
  for (uint32_t i = 0; i < pixels; ++i, from += 5, to += 4) {
    const unsigned light = 255u - from[3];
    to[0] = MultiplyBytes(255u - from[2], light);
    to[1] = MultiplyBytes(255u - from[1], light);
    to[2] = MultiplyBytes(255u - from[0], light);
    to[3] = from[4];
  }
}

}  // namespace

size_t BytesPerPixel(PixelFormat format) {
  switch (format) {
    case PixelFormat::kBgra8:
      return 4;
    case PixelFormat::kRgba16:
      return 8;
    case PixelFormat::kRgbaFloat:
      return 16;
    case PixelFormat::kCmyka16:
      return 10;
    case PixelFormat::kCmyka8:
      break;
  }
  return 5;
}

ColorConverter::ColorConverter(std::span<const uint8_t> icc, ColorModel model, PixelFormat format)
    : format_(format) {
  if (icc.empty()) return;
  context_ = std::make_shared<LcmsContext>(icc.size());
  const cmsContext context = RawContext(*context_);
  const Profile profile(
      cmsOpenProfileFromMemTHR(context, icc.data(), static_cast<cmsUInt32Number>(icc.size())));
  const Profile srgb(cmsCreate_sRGBProfileTHR(context));
  context_->CheckMemory();
  ignores_profile_ = true;
  if (!profile || !srgb) return;

  const uint32_t space = ColorSpaceOf(icc);
  if (space == cmsSigGrayData && model == ColorModel::kGrey) {
    ignores_profile_ = !BuildGreyTable(profile.get(), srgb.get());
  } else if ((space == cmsSigRgbData && model != ColorModel::kCmyk) ||
             (space == cmsSigCmykData && model == ColorModel::kCmyk)) {
    if (space == cmsSigRgbData && IsSrgbInEffect(profile.get(), srgb.get())) {
      context_->CheckMemory();
      ignores_profile_ = false;
      return;
    }
    transform_ = MakeTransform(profile.get(), LcmsType(format), srgb.get());
    ignores_profile_ = transform_ == nullptr;
  }
  context_->CheckMemory();
}

bool ColorConverter::BuildGreyTable(void* profile, void* srgb) {
  const bool words = format_ == PixelFormat::kRgba16;
  // Unoptimized, since the optimized form interpolates between 33 levels: too few for shadows.
  const Transform transform(
      cmsCreateTransformTHR(RawContext(*context_), profile, words ? TYPE_GRAY_16 : TYPE_GRAY_8,
                            srgb, TYPE_BGRA_8, kColorIntent, kColorFlags | cmsFLAGS_NOOPTIMIZE));
  if (!transform) return false;
  const uint32_t count = words ? 65536 : 256;
  std::vector<uint16_t> level_words(words ? count : 0);
  std::vector<uint8_t> level_bytes(words ? 0 : count), table(count * size_t{4});
  std::iota(level_words.begin(), level_words.end(), uint16_t{0});
  std::iota(level_bytes.begin(), level_bytes.end(), uint8_t{0});
  const void* levels = words ? static_cast<const void*>(level_words.data()) : level_bytes.data();
  cmsDoTransform(transform.get(), levels, table.data(), count);

  bool changes = false;
  for (uint32_t v = 0; v < count; ++v) {
    const int plain = words ? To8(static_cast<uint16_t>(v)) : static_cast<int>(v);
    for (size_t c = 0; c < 3; ++c) changes |= std::abs(table[v * size_t{4} + c] - plain) > 1;
  }
  if (changes) grey_ = std::move(table);
  return true;
}

void ColorConverter::Convert(const void* from, uint8_t* to, uint32_t pixels) const {
  if (transform_ != nullptr) {
    cmsDoTransform(transform_.get(), from, to, pixels);
  } else if (format_ == PixelFormat::kRgba16) {
    const uint16_t* words = static_cast<const uint16_t*>(from);
    if (grey_.empty()) {
      Rgba16ToBgra8(words, to, pixels);
      return;
    }
    for (uint32_t i = 0; i < pixels; ++i, words += 4, to += 4) {
      std::memcpy(to, &grey_[words[1] * size_t{4}], 3);
      to[3] = To8(words[3]);
    }
  } else if (format_ == PixelFormat::kCmyka8) {
    Cmyka8ToBgra8(static_cast<const uint8_t*>(from), to, pixels);
  } else {
    const uint8_t* bytes = static_cast<const uint8_t*>(from);
    if (bytes != to) std::memmove(to, bytes, size_t{pixels} * 4);
    if (grey_.empty()) return;
    for (uint32_t i = 0; i < pixels; ++i, to += 4) {
      std::memcpy(to, &grey_[to[1] * size_t{4}], 3);
    }
  }
}

std::vector<uint8_t> MakeRgbProfile(const Chromaticity& white, const Chromaticity& red,
                                    const Chromaticity& green, const Chromaticity& blue,
                                    double gamma) {
  struct CurveFreer {
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
  };
  // IEC 61966-2-1: exponent 2.4 above a linear foot.
  const LcmsContext context(0);
  const double srgb[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
  const std::unique_ptr<cmsToneCurve, CurveFreer> curve(
      gamma > 0 ? cmsBuildGamma(RawContext(context), gamma)
                : cmsBuildParametricToneCurve(RawContext(context), 4, srgb));
  context.CheckMemory();
  if (!curve) return {};
  const cmsCIExyY white_point = {white.x, white.y, 1};
  const cmsCIExyYTRIPLE primaries = {{red.x, red.y, 1}, {green.x, green.y, 1}, {blue.x, blue.y, 1}};
  cmsToneCurve* const curves[] = {curve.get(), curve.get(), curve.get()};
  const Profile profile(
      cmsCreateRGBProfileTHR(RawContext(context), &white_point, &primaries, curves));
  cmsUInt32Number length = 0;
  const bool measured = profile && cmsSaveProfileToMem(profile.get(), nullptr, &length);
  context.CheckMemory();
  std::vector<uint8_t> bytes(measured ? length : 0);
  if (!measured || !cmsSaveProfileToMem(profile.get(), bytes.data(), &length)) bytes.clear();
  context.CheckMemory();
  return bytes;
}

}  // namespace kelto::stills
