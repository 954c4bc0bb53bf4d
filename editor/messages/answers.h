// What the process that draws answers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "editor/rules/film_way.h"
#include "framing/pixel_size.h"
#include "host/base/film_format.h"

namespace kelto::editor {

/// Ahead of the pixels of a frame or of the photo: B, G, R, A, rows without padding.
struct PictureHead {
  int32_t frame = 0;  ///< of the film; of the photo 0, or 1 for one that has more pixels
  host::FrameSize size;
};

/// A picture in a message's body, whose bytes it shares.
struct PictureBody {
  PictureHead head;
  const uint8_t* pixels = nullptr;
};

/// Throws Error where the body is no picture.
PictureBody PictureOf(std::string_view body);

std::string BodyOf(const PixelSize& photo);
/// Throws Error where the body is no size that a photo can have.
PixelSize SizeOf(std::string_view body);

/// What of a photo settles whether films are drawn deep.
struct PhotoDepth {
  int32_t deep = 0;      ///< 1: more than eight bits, or transparent somewhere
  int32_t possible = 1;  ///< 0: too large to be read with all its bits
};

std::string BodyOf(const FilmWay& way);
FilmWay WayOf(std::string_view body);

/// Peaks of a sound in a second of it.
inline constexpr double kPeaksPerSecond = 50.0;

std::string BodyOf(const std::vector<float>& peaks);
std::vector<float> PeaksOf(std::string_view body);

}  // namespace kelto::editor
