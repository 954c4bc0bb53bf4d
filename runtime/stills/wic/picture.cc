#include "runtime/stills/wic/picture.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <new>
#include <numeric>
#include <string>
#include <vector>

#include "runtime/stills/decoder.h"
#include "runtime/stills/scratch.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {
namespace {

// Values of EXIF's colour space field, which the component also uses as names of its own profiles.
constexpr UINT kExifSrgb = 1, kExifAdobeRgb = 2;

/// The file forms that are taken. The component may know others, but some of those are decoded
/// wrongly by one implementation or another.
bool IsTaken(const GUID& container) {
  for (const GUID* known :
       {&GUID_ContainerFormatJpeg, &GUID_ContainerFormatPng, &GUID_ContainerFormatTiff,
        &GUID_ContainerFormatGif, &GUID_ContainerFormatBmp, &GUID_ContainerFormatWmp,
        &GUID_ContainerFormatHeif}) {
    if (container == *known) return true;
  }
  return false;
}

/// The bits that a channel has of a pixel; 0 when the component does not say.
int BitsOfChannel(IWICPixelFormatInfo2& format, UINT channel) {
  std::array<BYTE, 16> mask = {};
  UINT bytes = 0;
  if (FAILED(format.GetChannelMask(channel, mask.size(), mask.data(), &bytes))) return 0;
  return std::accumulate(mask.begin(), mask.end(), 0,
                         [](int bits, BYTE part) { return bits + std::popcount(part); });
}

}  // namespace

void WicPicture::Check(HRESULT result) const {
  if (FAILED(result)) Fail(result);
}

void WicPicture::Fail(HRESULT result) const {
  char code[16];
  std::snprintf(code, sizeof code, "0x%08lX", static_cast<unsigned long>(result));
  const std::string reason = std::string(" picture (the system's decoder reports ") + code + ")";
  switch (result) {
    case E_OUTOFMEMORY:
    case WINCODEC_ERR_INSUFFICIENTBUFFER:
      throw std::bad_alloc();
    case WINCODEC_ERR_COMPONENTNOTFOUND:
      throw StillError(noCodecErr, "not a picture in a known format");
    case WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT:
    case WINCODEC_ERR_UNSUPPORTEDOPERATION:
    case WINCODEC_ERR_UNSUPPORTEDVERSION:
      throw StillError(noCodecErr, "unsupported" + reason);
    default:
      throw StillError(codecBadDataErr,
                       (stream_->wanted_more() ? "truncated" : "damaged") + reason);
  }
}

WicPicture::WicPicture(StillFile& file) : stream_(new FileStream(file)) {
  file.Rewind();
  void* factory = nullptr;
  const HRESULT found = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                         __uuidof(IWICImagingFactory), &factory);
  if (FAILED(found)) throw StillError(noCodecErr, "this system has no imaging component");
  factory_ = Com<IWICImagingFactory>(static_cast<IWICImagingFactory*>(factory));

  Com<IWICBitmapDecoder> decoder;
  // On demand: what the file says beside its pixels is not needed.
  Check(factory_->CreateDecoderFromStream(stream_.get(), nullptr, WICDecodeMetadataCacheOnDemand,
                                          decoder.Receive()));
  GUID container = {};
  Check(decoder->GetContainerFormat(&container));
  if (!IsTaken(container)) throw StillError(noCodecErr, "not a picture in a known format");
  Check(decoder->GetFrame(0, frame_.Receive()));
  Check(frame_->GetSize(&width_, &height_));
}

WicForm WicPicture::form() const {
  WICPixelFormatGUID format = {};
  Check(frame_->GetPixelFormat(&format));
  WicForm form;  // until known better
  Com<IWICComponentInfo> component;
  if (FAILED(factory_->CreateComponentInfo(format, component.Receive()))) return form;
  const auto info = component.As<IWICPixelFormatInfo2>();
  UINT bits = 0, channels = 0;
  BOOL transparent = TRUE;
  if (!info || FAILED(info->GetBitsPerPixel(&bits)) ||
      FAILED(info->SupportsTransparency(&transparent))) {
    return form;
  }
  form.bits_per_pixel = bits;
  form.transparent = transparent != FALSE;
  WICPixelFormatNumericRepresentation numbers = WICPixelFormatNumericRepresentationUnspecified;
  form.indexed = SUCCEEDED(info->GetNumericRepresentation(&numbers)) &&
                 numbers == WICPixelFormatNumericRepresentationIndexed;
  if (FAILED(info->GetChannelCount(&channels))) return form;
  for (UINT channel = 0; channel < channels; ++channel) {
    form.bits = std::max(form.bits, std::min(BitsOfChannel(*info.get(), channel), 16));
  }
  return form;
}

uint64_t WicPicture::UnpackedBytes() const {
  return uint64_t{width_} * height_ * form().bits_per_pixel / 8;
}

/// The file's profile, or the colour space that it names instead; null when it is sRGB.
Com<IWICColorContext> WicPicture::EmbeddedProfile() const {
  UINT count = 0;
  if (FAILED(frame_->GetColorContexts(0, nullptr, &count)) || count == 0) return {};
  std::vector<Com<IWICColorContext>> owned(count);
  std::vector<IWICColorContext*> contexts;
  for (Com<IWICColorContext>& context : owned) {
    Check(factory_->CreateColorContext(context.Receive()));
    contexts.push_back(context.get());
  }
  if (FAILED(frame_->GetColorContexts(count, contexts.data(), &count))) return {};
  Com<IWICColorContext> named;
  for (Com<IWICColorContext>& context : owned) {
    WICColorContextType type = WICColorContextUninitialized;
    if (FAILED(context->GetType(&type))) continue;
    UINT value = 0;
    if (type == WICColorContextProfile) {
      if (SUCCEEDED(context->GetProfileBytes(0, nullptr, &value))) CheckIccSize(value);
      return std::move(context);
    }
    if (type == WICColorContextExifColorSpace && SUCCEEDED(context->GetExifColorSpace(&value)) &&
        value == kExifAdobeRgb) {
      named = std::move(context);
    }
  }
  return named;
}

/// Puts a conversion from `profile` to sRGB over `source`; false when the component makes none.
bool WicPicture::Transform(IWICBitmapSource* source, IWICColorContext* profile) {
  Com<IWICColorContext> srgb;
  Com<IWICColorTransform> transform;
  if (FAILED(factory_->CreateColorContext(srgb.Receive())) ||
      FAILED(srgb->InitializeFromExifColorSpace(kExifSrgb)) ||
      FAILED(factory_->CreateColorTransformer(transform.Receive())) ||
      FAILED(transform->Initialize(source, profile, srgb.get(), GUID_WICPixelFormat32bppBGRA))) {
    return false;
  }
  bgra_ = transform.As<IWICBitmapSource>();
  return static_cast<bool>(bgra_);
}

Com<IWICBitmapSource> WicPicture::Converted(IWICBitmapSource* source, const GUID& format) const {
  Com<IWICFormatConverter> converter;
  Check(factory_->CreateFormatConverter(converter.Receive()));
  Check(converter->Initialize(source, format, WICBitmapDitherTypeNone, nullptr, 0.0,
                              WICBitmapPaletteTypeCustom));
  return converter.As<IWICBitmapSource>();
}

void WicPicture::Convert() {
  const WicForm own = form();
  // A palette's colours may be transparent, whatever its format says of itself.
  has_alpha_ = own.transparent || own.bits_per_pixel <= 8;
  CheckScratch(UnpackedBytes());
  Com<IWICBitmapSource> plain = Converted(frame_.get(), GUID_WICPixelFormat32bppBGRA);
  const auto profile = EmbeddedProfile();
  // The profile is for the file's own samples, but transforms do not carry alpha, nor take every
  // layout.
  const bool done = profile && ((!has_alpha_ && Transform(frame_.get(), profile.get())) ||
                                Transform(plain.get(), profile.get()));
  if (!done) bgra_ = std::move(plain);
}

void WicPicture::Read(uint32_t y, uint32_t rows, uint32_t width, uint8_t* to, size_t row_bytes) {
  const WICRect region = {0, static_cast<INT>(y), static_cast<INT>(width), static_cast<INT>(rows)};
  const size_t bytes = row_bytes * (rows - 1) + size_t{4} * width;
  Check(bgra_->CopyPixels(&region, static_cast<UINT>(row_bytes), static_cast<UINT>(bytes), to));
}

void WicPicture::ConvertToWords() {
  has_alpha_ = form().transparent;
  CheckScratch(UnpackedBytes());
  WICPixelFormatGUID own = {};
  Check(frame_->GetPixelFormat(&own));
  // What files commonly have is taken as it is: not every version converts it.
  words_per_pixel_ = own == GUID_WICPixelFormat16bppGray  ? 1
                     : own == GUID_WICPixelFormat48bppRGB ? 3
                                                          : 4;
  const bool taken = words_per_pixel_ < 4 || own == GUID_WICPixelFormat64bppRGBA;
  words_ =
      taken ? frame_.As<IWICBitmapSource>() : Converted(frame_.get(), GUID_WICPixelFormat64bppRGBA);
}

void WicPicture::ReadWords(uint32_t y, uint16_t* to) {
  const size_t words = size_t{words_per_pixel_} * width_, bytes = words * sizeof(uint16_t);
  const WICRect region = {0, static_cast<INT>(y), static_cast<INT>(width_), 1};
  // At the end of the row, from where they are spread without meeting what is still to be read.
  const uint16_t* from = to + size_t{4} * width_ - words;
  void* const place = to + size_t{4} * width_ - words;
  Check(words_->CopyPixels(&region, static_cast<UINT>(bytes), static_cast<UINT>(bytes),
                           static_cast<BYTE*>(place)));
  if (words_per_pixel_ == 4) return;
  const bool grey = words_per_pixel_ == 1;
  for (uint32_t x = 0; x < width_; ++x, from += words_per_pixel_, to += 4) {
    const uint16_t red = from[0], green = from[grey ? 0 : 1], blue = from[grey ? 0 : 2];
    to[0] = red;
    to[1] = green;
    to[2] = blue;
    to[3] = 65535;
  }
}

std::vector<uint8_t> WicPicture::ProfileBytes() const {
  const auto profile = EmbeddedProfile();
  UINT size = 0;
  if (!profile || FAILED(profile->GetProfileBytes(0, nullptr, &size))) return {};
  std::vector<uint8_t> bytes(size);
  if (FAILED(profile->GetProfileBytes(size, bytes.data(), &size))) return {};
  bytes.resize(std::min<size_t>(bytes.size(), size));
  return bytes;
}

}  // namespace kelto::stills
