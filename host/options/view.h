// Views: how close the picture is looked at, and where.
#pragma once

#include <string_view>

#include "framing/view.h"

namespace kelto::host {

/// Farther out there is nothing but background.
constexpr double kMaxCentre = 100.0;

/// Reads "ZOOM" or "ZOOM@X,Y", such as "2" or "1.5@0.25,-0.1". Throws UsageError for anything else,
/// for a zoom outside kMinZoom..kMaxZoom and for a centre beyond kMaxCentre.
View ParseView(std::string_view text);

}  // namespace kelto::host
