#include "host/options/colour.h"

#include <charconv>

#include "host/base/error.h"

namespace kelto::host {

Colour ParseColour(std::string_view text) {
  if (text.starts_with('#')) text.remove_prefix(1);
  uint32_t rgb = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, rgb, 16);
  if (text.size() != 6 || result.ec != std::errc{} || result.ptr != end) {
    throw UsageError("a colour is '#rrggbb' in hexadecimal, such as '#ff8000'");
  }
  return {static_cast<uint8_t>(rgb >> 16), static_cast<uint8_t>(rgb >> 8),
          static_cast<uint8_t>(rgb)};
}

}  // namespace kelto::host
