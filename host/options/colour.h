// Colours.
#pragma once

#include <cstdint>
#include <string_view>

namespace kelto::host {

/// An sRGB colour, 0..255 a channel.
struct Colour {
  uint8_t red = 0;
  uint8_t green = 0;
  uint8_t blue = 0;
  bool operator==(const Colour&) const = default;
};

/// Reads "#rrggbb" or "rrggbb" (a shell takes an unquoted # for a comment), in hexadecimal. Throws
/// UsageError for anything else.
Colour ParseColour(std::string_view text);

}  // namespace kelto::host
