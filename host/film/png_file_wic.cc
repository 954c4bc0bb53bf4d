// PNG through the imaging component of Windows (WIC).
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>

#include <wincodec.h>

#include <cstdio>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>

#include "host/film/png_file.h"
#include "host/film/three_channels.h"

namespace kelto::host {
namespace {

struct Releaser {
  void operator()(IUnknown* object) const { object->Release(); }
};
template <typename T>
using Owned = std::unique_ptr<T, Releaser>;

void Check(HRESULT result) {
  if (SUCCEEDED(result)) return;
  if (result == E_OUTOFMEMORY) throw std::bad_alloc();
  char text[80];
  std::snprintf(text, sizeof text, "the system's imaging component reports 0x%08lX",
                static_cast<unsigned long>(result));
  throw std::runtime_error(text);
}

/// What `create` makes; throws when it fails.
template <typename T, typename Create>
Owned<T> Make(Create create) {
  T* object = nullptr;
  Check(create(&object));
  return Owned<T>(object);
}

IWICImagingFactory& Factory() {
  // The command writes from its first thread only, and goes on until the process ends.
  static const Owned<IWICImagingFactory> factory = [] {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    return Make<IWICImagingFactory>([](IWICImagingFactory** object) {
      return CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                              __uuidof(IWICImagingFactory), reinterpret_cast<void**>(object));
    });
  }();
  return *factory;
}

/// Rows of B, G, R without padding.
std::vector<uint8_t> WithoutAlpha(const FrameView& frame) {
  std::vector<uint8_t> bgr(static_cast<size_t>(frame.size.width) * frame.size.height * 3);
  uint8_t* to = bgr.data();
  for (int32_t row = 0; row < frame.size.height; ++row) {
    CopyThreeChannels(frame.Row(row), frame.size.width, ChannelOrder::kBgr, to);
    to += ptrdiff_t{frame.size.width} * 3;
  }
  return bgr;
}

std::vector<uint8_t> BytesOf(IStream& stream) {
  STATSTG status{};
  Check(stream.Stat(&status, STATFLAG_NONAME));
  std::vector<uint8_t> bytes(static_cast<size_t>(status.cbSize.QuadPart));
  Check(stream.Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr));
  ULONG read = 0;
  Check(stream.Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read));
  bytes.resize(read);
  return bytes;
}

}  // namespace

std::vector<uint8_t> EncodePng(const FrameView& frame) {
  const auto stream =
      Make<IStream>([](IStream** object) { return CreateStreamOnHGlobal(nullptr, TRUE, object); });
  const auto encoder = Make<IWICBitmapEncoder>([](IWICBitmapEncoder** object) {
    return Factory().CreateEncoder(GUID_ContainerFormatPng, nullptr, object);
  });
  Check(encoder->Initialize(stream.get(), WICBitmapEncoderNoCache));
  const auto picture = Make<IWICBitmapFrameEncode>(
      [&](IWICBitmapFrameEncode** object) { return encoder->CreateNewFrame(object, nullptr); });
  Check(picture->Initialize(nullptr));
  const UINT width = static_cast<UINT>(frame.size.width);
  const UINT height = static_cast<UINT>(frame.size.height);
  Check(picture->SetSize(width, height));
  WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
  Check(picture->SetPixelFormat(&format));
  if (format != GUID_WICPixelFormat24bppBGR) throw std::runtime_error("it takes no 24-bit pixels");
  std::vector<uint8_t> bgr = WithoutAlpha(frame);
  Check(picture->WritePixels(height, width * 3, static_cast<UINT>(bgr.size()), bgr.data()));
  Check(picture->Commit());
  Check(encoder->Commit());
  return BytesOf(*stream);
}

}  // namespace kelto::host
