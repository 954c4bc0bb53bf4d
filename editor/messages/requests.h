// What the editor asks of the process that draws. Texts of a message's body.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/base/film_format.h"

namespace kelto::editor {

/// A frame of the film, drawn in `size` instead of the film's own.
struct DrawRequest {
  int32_t frame = 0;
  host::FrameSize size;
  double quality = 1.0;  ///< of what the effect draws, 0.5 in a hurry
};

std::string BodyOf(const DrawRequest& request);
/// Throws Error.
DrawRequest DrawRequestOf(std::string_view body);

}  // namespace kelto::editor
