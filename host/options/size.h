// Frame sizes.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "host/base/film_format.h"

namespace kelto::host {

/// The effect draws nothing into a frame that is one pixel wide or high.
constexpr int32_t kMinFrameSide = 2;
/// The limit of the H.264 encoder.
constexpr int32_t kMaxFrameSide = 16384;

/// A size that films often have, by its name.
struct NamedSize {
  const char* name;
  FrameSize size;
};

std::span<const NamedSize> NamedSizes();

/// The names as a text, "720p, 1080p, ...".
std::string SizeNames();

/// Reads a name of NamedSizes, or "1920x1080". Throws UsageError for anything else and for sides
/// outside kMinFrameSide..kMaxFrameSide.
FrameSize ParseSize(std::string_view text);

/// "1920x1080".
std::string ToString(FrameSize size);

}  // namespace kelto::host
