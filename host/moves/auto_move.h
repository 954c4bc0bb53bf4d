// The move that a picture suggests.
#pragma once

#include <cstdint>
#include <vector>

#include "host/base/library.h"
#include "host/moves/presets.h"
#include "host/track/photo_views.h"

namespace kelto::host {

/// Pixels B, G, R, A without padding, upright.
struct PhotoPixels {
  PixelSize size;
  std::vector<uint8_t> bytes;
};

/// Whether this build can look for what is interesting in a picture.
bool CanFindInterest();

/// The library that does; none in a build that cannot.
Libraries AutoMoveLibraries();

/// How much closer the last view of AutoMove is than the first, where nothing says otherwise.
inline constexpr double kUsualAutoAmount = 1 / 0.7;

/// First and last view of a slow move in by the factor `amount`, to the most eye-catching area
/// (host/moves/interest.h). A subject, or several about as strong, that a view of the frame's shape
/// can show is cut by neither view: the move goes in by less, down to 1.05, where it is large. The
/// first view contains the last; neither leaves the photo further than `fit` asks for. The same
/// picture gets the same move.
/// Throws UsageError in a build without.
std::vector<PhotoRect> AutoMove(const PhotoViews& views, const PhotoPixels& pixels, Fit fit,
                                double amount = kUsualAutoAmount);

}  // namespace kelto::host
