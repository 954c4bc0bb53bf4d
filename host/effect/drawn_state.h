// What an effect's instance holds after a frame: the values that it drew with.
#pragma once

#include <array>
#include <string>

#include "framing/view.h"
#include "runtime/hfx/host.h"

namespace kelto::host {

/// The view of the frame rendered last, which the effect leaves in the fields of "size" and
/// "position". Like the two below it throws Error when the effect has no such parameters.
View DrawnView(hfx::Effect& effect);

/// Whether the photo's pixels counted as square.
bool DrewSquarePixels(hfx::Effect& effect);

/// The colour beside the photo, red, green and blue: the value of "bgcolor".
std::array<double, 3> DrawnBackground(hfx::Effect& effect);

/// At this quality and below the effect draws by nearest neighbour, whatever its filter.
constexpr double kFastQuality = 0.5;

/// The entry of a list, such as "filter".
std::string DrawnEntry(hfx::Effect& effect, const char* list);

}  // namespace kelto::host
