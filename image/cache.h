// The image cache that all instances share: allocation that takes memory back from others, the
// budget, the reduction to the output's size, and the choice of the level to render from.
//
// A cached image has four 8-bit channels a pixel, Y, Cr, Cb and a byte that nobody writes; row 0 is
// the top row; rows are aligned to 8 bytes. Nothing is locked: the registry and other instances'
// images are touched on the calling thread.
#pragma once

#include <cstdint>

#include "platform/hfx.h"
#include "platform/ipl.h"
#include "state/PanZoomState.h"

namespace kelto {

/// Bytes that the cached images of all instances may take together: 120 MiB.
constexpr uint32_t kCacheBudget = 125829120;

/// Releases all eight working images of an instance, in order, and leaves null in their place.
void ReleaseWorkImages(PanZoomState& state);

/// Attaches pixel memory (not cleared) to `image` for the use of `state`. While that fails, other
/// instances are emptied one by one, in the registry's order. On success the image is entered into
/// the cache's account; on failure a line goes to the console and the library's status stays set.
void AllocateImageData(PanZoomState& state, IplImage* image);

/// Enters `image` into the account as AllocateImageData does, without memory: its pixels will be
/// those of an image that it exchanges them with.
void CountImageData(PanZoomState& state, IplImage* image);

/// Makes the header of a cached image; null, with the library's status set, when that fails.
IplImage* NewCachedImageHeader(int32_t width, int32_t height);

/// Empties other instances, in the registry's order, until the total is within the budget. The
/// caller's own images stay, whatever the total.
void EnforceCacheBudget(PanZoomState& state);

/// KeepsNaturalSize of the instance's image and output. `cacheState` should be 1 then and 0
/// otherwise.
bool KeepsNaturalSize(const PanZoomState& state);

/// Replaces level 0 by a reduced copy (ReducedSize) unless KeepsNaturalSize, and sets `cacheState`.
/// When memory runs out the natural size stays. Throws the integer 1 when the image library reports
/// success without giving pixels.
void ReduceToVideoResolution(PanZoomState& state);

/// The level to render a frame from: the last of the leading levels that are larger than the frame
/// needs in both directions, or level 0 (null when nothing is loaded).
IplImage* SelectCachedLevel(const PanZoomState& state, const hfxImage& output);

}  // namespace kelto
