// A frame's parts, for those who draw it themselves.
#pragma once

#include <optional>
#include <string>

#include "adapters/frei0r/adapter.h"
#include "adapters/frei0r/photo_effect.h"
#include "host/options/colour.h"

namespace kelto::frei0r {

struct Adapter::Parts {
  std::string photo;  ///< its file
  ShownPhoto shown;
  std::optional<host::Colour> background;  ///< none: the video
};

}  // namespace kelto::frei0r
