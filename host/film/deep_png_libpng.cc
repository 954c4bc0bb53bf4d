// Deep PNG through libpng.
#include <png.h>

#include <bit>
#include <csetjmp>
#include <cstring>
#include <stdexcept>

#include "host/film/deep_pictures.h"

namespace kelto::host {
namespace {

/// The library's records, and room for what it writes and says.
struct DeepPng {
  DeepPng() = default;
  DeepPng(const DeepPng&) = delete;
  DeepPng& operator=(const DeepPng&) = delete;
  ~DeepPng() { png_destroy_write_struct(&png, &info); }
  png_structp png = nullptr;
  png_infop info = nullptr;
  std::jmp_buf jump;
  char message[160] = "";
  std::vector<uint8_t> bytes;
};

[[noreturn]] void OnPngError(png_structp png, png_const_charp text) {
  auto& writer = *static_cast<DeepPng*>(png_get_error_ptr(png));
  std::strncpy(writer.message, text, sizeof writer.message - 1);
  std::longjmp(writer.jump, 1);
}

void OnPngWrite(png_structp png, png_bytep data, size_t size) {
  auto& bytes = static_cast<DeepPng*>(png_get_io_ptr(png))->bytes;
  bool kept = true;
  try {
    bytes.insert(bytes.end(), data, data + size);
  } catch (const std::exception&) {
    kept = false;  // no exception may pass through the library
  }
  if (!kept) png_error(png, "memory ran out");  // which jumps, as handlers must not
}

void WritePng(DeepPng& writer, const uint8_t* samples, FrameSize size, PictureDepth depth) {
  if (setjmp(writer.jump) != 0) throw std::runtime_error(writer.message);
  png_set_write_fn(writer.png, &writer, OnPngWrite, nullptr);
  png_set_IHDR(writer.png, writer.info, static_cast<png_uint_32>(size.width),
               static_cast<png_uint_32>(size.height), depth.bits,
               depth.alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_sRGB_gAMA_and_cHRM(writer.png, writer.info, PNG_sRGB_INTENT_PERCEPTUAL);
  png_write_info(writer.png, writer.info);
  if (depth.bits == 16 && std::endian::native == std::endian::little) png_set_swap(writer.png);
  const size_t row = png_get_rowbytes(writer.png, writer.info);
  for (int32_t y = 0; y < size.height; ++y) png_write_row(writer.png, samples + row * y);
  png_write_end(writer.png, writer.info);
}

}  // namespace

std::vector<uint8_t> EncodeDeepPng(const FrameView& frame, PictureDepth depth) {
  const std::vector<uint8_t> samples = SamplesOf(frame, depth);
  DeepPng writer;
  writer.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &writer, OnPngError, nullptr);
  if (writer.png != nullptr) writer.info = png_create_info_struct(writer.png);
  if (writer.info == nullptr) throw std::bad_alloc();
  WritePng(writer, samples.data(), frame.size, depth);
  return std::move(writer.bytes);
}

}  // namespace kelto::host
