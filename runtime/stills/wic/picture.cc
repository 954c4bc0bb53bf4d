#include "runtime/stills/wic/picture.h"

#include <array>
#include <cstdio>
#include <new>
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

bool WicPicture::MayHaveAlpha(const WICPixelFormatGUID& format, uint32_t* bits_per_pixel) const {
  // Until known better.
  *bits_per_pixel = 32;
  Com<IWICComponentInfo> component;
  if (FAILED(factory_->CreateComponentInfo(format, component.Receive()))) return true;
  const auto info = component.As<IWICPixelFormatInfo2>();
  UINT bits = 0;
  BOOL transparent = TRUE;
  if (!info || FAILED(info->GetBitsPerPixel(&bits)) ||
      FAILED(info->SupportsTransparency(&transparent))) {
    return true;
  }
  *bits_per_pixel = bits;
  // A palette's colours may be transparent, whatever its format says of itself.
  return transparent || bits <= 8;
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

Com<IWICBitmapSource> WicPicture::ToBgra(IWICBitmapSource* source) const {
  Com<IWICFormatConverter> converter;
  Check(factory_->CreateFormatConverter(converter.Receive()));
  Check(converter->Initialize(source, GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone,
                              nullptr, 0.0, WICBitmapPaletteTypeCustom));
  return converter.As<IWICBitmapSource>();
}

void WicPicture::Convert() {
  WICPixelFormatGUID format = {};
  Check(frame_->GetPixelFormat(&format));
  uint32_t bits = 0;
  has_alpha_ = MayHaveAlpha(format, &bits);
  // Some decoders unpack a picture whole.
  CheckScratch(uint64_t{width_} * height_ * bits / 8);
  Com<IWICBitmapSource> plain = ToBgra(frame_.get());
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

}  // namespace kelto::stills
