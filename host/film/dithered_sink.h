// Deep frames in films of eight bits.
#pragma once

#include <memory>

#include "host/film/formats.h"

namespace kelto::host {

/// A sink of opaque frames in PixelLayout::kRgba16 for a film of a kind that takes eight bits: each
/// sample becomes one of the two levels beside it, by a pattern that stays where it is in the
/// frame, so that gradients show no bands and nothing flickers.
std::unique_ptr<FrameSink> DitherInto(const FilmKind& kind, const FilmRequest& request);

/// One frame of the kind's layout out of one in kRgba16.
void DitherFrame(const FrameView& frame, PixelLayout layout, uint8_t* pixels, ptrdiff_t rowBytes);

}  // namespace kelto::host
