// One output frame or field: the picture over its background, in the host's layout.
#pragma once

#include <cstdint>

#include "platform/hfx.h"
#include "resample/job.h"
#include "state/PanZoomState.h"

namespace kelto {

/// Renders the current frame with the loaded picture, or only its background when none is loaded.
/// `region` gives the size drawn, from the output's first pixel on; beyond the output it is cut.
/// Only images of colour space 0 and 1 are written, and only when input and output agree.
/// Throws the integer 1 without an input or output, and std::bad_alloc when memory runs out.
void RenderFrame(PanZoomState& state, const hfxRect& region);

/// Fills the output with black, for a missing picture over video. Throws the integer 1 without an
/// output.
void RenderWithoutImage(PanZoomState& state);

/// The resampler's code for an output layout (hfxImage::GetImgFormat, and GetChannelType of channel
/// 0), 0 .. 11: carried along in the job, where nothing of the picture depends on it.
int32_t LayoutCode(int32_t imgFormat, int32_t channelType);

/// The background colour's three bytes, red first: channels of 0..1 are truncated to bytes and,
/// with RGB source levels, clamped to studio range; not rescaled, since films made so far look so.
void BackgroundBytes(const double rgb[3], int32_t levels, uint8_t bytes[3]);

}  // namespace kelto
