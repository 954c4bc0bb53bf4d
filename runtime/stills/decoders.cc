#include <string>

#include "runtime/stills/decoder.h"
#include "runtime/stills/limits.h"
#include "runtime/stills/scratch.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {
namespace {

std::string SizeText(uint32_t width, uint32_t height) {
  return std::to_string(width) + "x" + std::to_string(height) + " pixels";
}

}  // namespace

const Decoder& FindDecoder(StillFile& file) {
  uint8_t head[kHeadBytes];
  file.Rewind();
  const size_t length = file.Read(head, sizeof head);
  file.Rewind();
  if (length == 0) throw StillError(noCodecErr, "an empty file");
#if defined(_WIN32)
  // The component comes last: it takes whatever the others leave, and says what it cannot read.
  const Decoder* const decoders[] = {&TiffDecoder(), &WebpDecoder(), &TgaDecoder(), &WicDecoder()};
#else
  // TGA comes last: it has no signature, only plausible fields.
  const Decoder* const decoders[] = {&JpegDecoder(), &PngDecoder(), &TiffDecoder(), &WebpDecoder(),
                                     &GifDecoder(),  &BmpDecoder(), &HeifDecoder(), &TgaDecoder()};
#endif
  for (const Decoder* decoder : decoders) {
    if (decoder->Knows({head, length})) return *decoder;
  }
  throw StillError(noCodecErr, "not a picture in a known format");
}

void CheckSize(const StillInfo& info, const StillFile& file, PixelFormat format) {
  const uint32_t width = info.upright_width(), height = info.upright_height();
  if (width == 0 || height == 0) {
    throw StillError(codecBadDataErr, SizeText(width, height) + ": there is nothing to draw");
  }
  if (width > kMaxSide || height > kMaxSide) {
    throw StillError(codecBadDataErr, SizeText(width, height) + "; the limit is " +
                                          std::to_string(kMaxSide) + " pixels a side");
  }
  const uint64_t pixels = info.pixels();
  if (pixels > kUnquestionedPixels && pixels / kMaxPixelsPerFileByte > file.size()) {
    throw StillError(codecBadDataErr, SizeText(width, height) + " in a file of " +
                                          std::to_string(file.size()) + " bytes; the limit is " +
                                          std::to_string(kMaxPixelsPerFileByte) + " pixels a byte");
  }
  const uint64_t bytes = (width * uint64_t{BytesPerPixel(format)} + 7) / 8 * 8 * height;
  if (bytes > kMaxPixelBytes) {
    throw StillError(codecBadDataErr, SizeText(width, height) + " take " +
                                          std::to_string(bytes >> 20) + " MiB; the limit is " +
                                          std::to_string(kMaxPixelBytes >> 20) + " MiB");
  }
  CheckScratch(info.scratch_for(format));
}

void CheckIccSize(uint64_t bytes) {
  if (bytes <= kMaxIccBytes) return;
  throw StillError(codecBadDataErr, "an ICC profile of " + std::to_string(bytes >> 10) +
                                        " KiB; the limit is " + std::to_string(kMaxIccBytes >> 10) +
                                        " KiB");
}

void CheckUnchanged(const StillInfo& info, uint32_t width, uint32_t height) {
  if (width == info.width && height == info.height) return;
  throw StillError(codecBadDataErr, "the file changed after it was opened");
}

}  // namespace kelto::stills
