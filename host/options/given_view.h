// Views as people write them.
#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "framing/view.h"
#include "host/options/photo_rect.h"

namespace kelto::host {

/// A view by its zoom and centre, or as a part of the photo in its pixels.
using GivenView = std::variant<View, PhotoRect>;

/// Reads "ZOOM", "ZOOM@X,Y" or "X,Y,WIDTH,HEIGHT". Throws UsageError as ParseView and
/// ParsePhotoRect do.
GivenView ParseGivenView(std::string_view text);

/// The shortest text that reads as the same view to the last bit.
std::string TextOf(const GivenView& view);

}  // namespace kelto::host
