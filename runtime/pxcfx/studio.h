// Studio range: 8-bit levels 16..235 stand for the full range 0..255 (ITU-R BT.601).
#pragma once

#include <cstdint>

namespace kelto::pxcfx {

constexpr int32_t kStudioBlack = 16;
// A full-range step is 219/255 of a studio step, in lowest terms.
constexpr int32_t kStudioSteps = 73;
constexpr int32_t kFullSteps = 85;

}  // namespace kelto::pxcfx
