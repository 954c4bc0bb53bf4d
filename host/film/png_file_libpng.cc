// PNG through libpng.
#include <png.h>

#include <stdexcept>
#include <string>

#include "host/film/png_file.h"
#include "host/film/three_channels.h"

namespace kelto::host {

std::vector<uint8_t> EncodePng(const FrameView& frame) {
  const int32_t width = frame.size.width;
  const int32_t height = frame.size.height;
  std::vector<uint8_t> rgb(static_cast<size_t>(width) * height * 3);
  uint8_t* to = rgb.data();
  for (int32_t row = 0; row < height; ++row) {
    CopyThreeChannels(frame.Row(row), width, ChannelOrder::kRgb, to);
    to += ptrdiff_t{width} * 3;
  }
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(width);
  image.height = static_cast<png_uint_32>(height);
  image.format = PNG_FORMAT_RGB;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::vector<uint8_t> file(size);
  if (png_image_write_to_memory(&image, file.data(), &size, 0, rgb.data(), 0, nullptr) == 0) {
    const std::string cause = image.message;
    png_image_free(&image);
    throw std::runtime_error(cause);
  }
  file.resize(size);
  return file;
}

}  // namespace kelto::host
