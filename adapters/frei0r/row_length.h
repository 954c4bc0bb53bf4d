// What hosts do in their own way: how far apart their rows are, and what their times mean.
//
// The interface says that rows have no padding, and MLT and GStreamer keep to it. FFmpeg hands out
// frames whose rows are padded to 64 bytes: at widths that are no multiple of 16, such as 854, 1366
// or 321, a plug-in that follows the interface comes out sheared there. So the caller is looked at.
#pragma once

#include <cstdint>

#include "adapters/frei0r/frame_clock.h"
#include "platform/api.h"

namespace kelto::frei0r {

/// Pixels from one row to the next in frames of `width` pixels from the host whose code `caller`
/// lies in: `width`, or more in FFmpeg. Only of versions whose rows were measured, since a wrong
/// guess would write past a frame's end.
KELTO_PLATFORM_API uint32_t RowLength(const void* caller, uint32_t width);

/// The clock for the times of the host whose code `caller` lies in: milliseconds in FFmpeg, the
/// buffers' own seconds in GStreamer, unknown in others.
KELTO_PLATFORM_API FrameClock ClockOf(const void* caller);

}  // namespace kelto::frei0r
