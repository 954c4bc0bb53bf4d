// The move that the faces in a picture suggest.
#pragma once

#include <vector>

#include "host/moves/presets.h"
#include "host/track/photo_views.h"

namespace kelto::host {

/// First and last view of a slow move in by the factor `amount`, to the faces, at least one, in
/// photo pixels. Where a view that `fit` allows has room for all of them, none is cut by the
/// frame's edge at any moment, and the last view has their eyes in its upper third as far as the
/// photo reaches; it goes no closer than that leaves room around them. Where there is no room, the
/// faces are visited from left to right, or from top to bottom where they are spread that way. No
/// view leaves the photo further than `fit` asks for.
std::vector<PhotoRect> FaceMove(const PhotoViews& views, const std::vector<PhotoRect>& faces,
                                Fit fit, double amount);

}  // namespace kelto::host
