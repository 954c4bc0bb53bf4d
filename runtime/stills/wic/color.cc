// Colours have been converted by the imaging component when rows arrive here, always in kBgra8.
#include "runtime/stills/color.h"

#include <cstring>

namespace kelto::stills {

size_t BytesPerPixel(PixelFormat) { return 4; }

ColorConverter::ColorConverter(std::span<const uint8_t>, ColorModel, PixelFormat format)
    : format_(format) {}

void ColorConverter::Convert(const void* from, uint8_t* to, uint32_t pixels) const {
  if (from != to) std::memcpy(to, from, size_t{4} * pixels);
}

}  // namespace kelto::stills
