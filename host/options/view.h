// Views: how close the picture is looked at, and where.
#pragma once

#include <string_view>

namespace kelto::host {

/// What the effect's zoom panel accepts.
constexpr double kMinZoom = 0.1;
constexpr double kMaxZoom = 20.0;
/// Farther out there is nothing but background.
constexpr double kMaxCentre = 100.0;

/// `x` and `y` are the view's centre in widths and heights of the picture fitted to the frame:
/// (0, 0) is the picture's centre, positive is right and down.
struct View {
  double zoom = 1.0;
  double x = 0.0;
  double y = 0.0;
  bool operator==(const View&) const = default;
};

/// Reads "ZOOM" or "ZOOM@X,Y", such as "2" or "1.5@0.25,-0.1". Throws UsageError for anything else,
/// for a zoom outside kMinZoom..kMaxZoom and for a centre beyond kMaxCentre.
View ParseView(std::string_view text);

}  // namespace kelto::host
