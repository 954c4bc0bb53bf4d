#include "tests/windows/wic_file.h"

#include <wincodec.h>

#include <stdexcept>

#include "runtime/stills/wic/com.h"

namespace kelto::stills {
namespace {

void Check(HRESULT result) {
  if (FAILED(result)) throw std::runtime_error("WIC cannot make a test's picture");
}

Com<IWICImagingFactory> MakeFactory() {
  void* made = nullptr;
  Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                         __uuidof(IWICImagingFactory), &made));
  return Com<IWICImagingFactory>(static_cast<IWICImagingFactory*>(made));
}

}  // namespace

Bytes EncodeByWic(const GUID& container, const Picture& picture, bool alpha) {
  const ComSession com;
  const Com<IWICImagingFactory> factory = MakeFactory();
  Com<IStream> stream;
  Com<IWICBitmapEncoder> encoder;
  Com<IWICBitmapFrameEncode> frame;
  Check(CreateStreamOnHGlobal(nullptr, TRUE, stream.Receive()));
  Check(factory->CreateEncoder(container, nullptr, encoder.Receive()));
  Check(encoder->Initialize(stream.get(), WICBitmapEncoderNoCache));
  Check(encoder->CreateNewFrame(frame.Receive(), nullptr));
  Check(frame->Initialize(nullptr));
  const UINT width = static_cast<UINT>(picture.width), height = static_cast<UINT>(picture.height);
  Check(frame->SetSize(width, height));
  const WICPixelFormatGUID wanted =
      alpha ? GUID_WICPixelFormat32bppBGRA : GUID_WICPixelFormat24bppBGR;
  WICPixelFormatGUID format = wanted;
  Check(frame->SetPixelFormat(&format));
  if (format != wanted) throw std::runtime_error("WIC's encoder takes other pixels");
  Bytes pixels;
  pixels.reserve(picture.pixels.size() * (alpha ? 4 : 3));
  for (const Pixel& p : picture.pixels) {
    for (const uint8_t component : {p.b, p.g, p.r}) pixels.push_back(component);
    if (alpha) pixels.push_back(p.a);
  }
  // Rows without padding; the encoders take any number of bytes a row.
  Check(frame->WritePixels(height, width * (alpha ? 4 : 3), static_cast<UINT>(pixels.size()),
                           pixels.data()));
  Check(frame->Commit());
  Check(encoder->Commit());

  STATSTG status = {};
  Check(stream->Stat(&status, STATFLAG_NONAME));
  Bytes bytes(static_cast<size_t>(status.cbSize.QuadPart));
  ULONG read = 0;
  Check(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr));
  Check(stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read));
  bytes.resize(read);
  return bytes;
}

void WriteJpegByWic(const std::string& path, int width, int height,
                    const std::function<Pixel(int, int)>& pixel) {
  const ComSession com;
  const Com<IWICImagingFactory> factory = MakeFactory();
  Com<IWICStream> stream;
  Com<IWICBitmapEncoder> encoder;
  Com<IWICBitmapFrameEncode> frame;
  Check(factory->CreateStream(stream.Receive()));
  const std::wstring name(path.begin(), path.end());
  Check(stream->InitializeFromFilename(name.c_str(), GENERIC_WRITE));
  Check(factory->CreateEncoder(GUID_ContainerFormatJpeg, nullptr, encoder.Receive()));
  Check(encoder->Initialize(stream.get(), WICBitmapEncoderNoCache));
  Check(encoder->CreateNewFrame(frame.Receive(), nullptr));
  Check(frame->Initialize(nullptr));
  Check(frame->SetSize(static_cast<UINT>(width), static_cast<UINT>(height)));
  WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
  Check(frame->SetPixelFormat(&format));
  Bytes row;
  for (int y = 0; y < height; ++y) {
    row.clear();
    for (int x = 0; x < width; ++x) {
      const Pixel p = pixel(x, y);
      for (const uint8_t component : {p.b, p.g, p.r}) row.push_back(component);
    }
    Check(frame->WritePixels(1, static_cast<UINT>(row.size()), static_cast<UINT>(row.size()),
                             row.data()));
  }
  Check(frame->Commit());
  Check(encoder->Commit());
}

}  // namespace kelto::stills
