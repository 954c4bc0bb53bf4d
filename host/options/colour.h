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
  uint8_t alpha = 255;  ///< colours are multiplied by it; below 255 only in deep frames
  bool operator==(const Colour&) const = default;
};

/// What is behind a film that is transparent.
constexpr Colour kNothing{0, 0, 0, 0};

/// Reads "#rrggbb" or "rrggbb" (a shell takes an unquoted # for a comment), in hexadecimal. Throws
/// UsageError for anything else.
Colour ParseColour(std::string_view text);

}  // namespace kelto::host
