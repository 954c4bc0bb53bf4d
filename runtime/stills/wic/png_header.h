// The beginning of a PNG, read before the imaging component sees the file.
#pragma once

#include <cstdint>
#include <optional>

#include "runtime/stills/still_file.h"

namespace kelto::stills {

struct PngHeader {
  uint32_t width, height;  ///< as the file claims
  bool grey;               ///< whether its samples are grey, with alpha or without
};

/// Nothing when the file is no PNG. Leaves the file at its beginning.
std::optional<PngHeader> ReadPngHeader(StillFile& file);

}  // namespace kelto::stills
