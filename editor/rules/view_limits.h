// What the views of a film may be.
#pragma once

#include "framing/pixel_size.h"
#include "host/options/photo_rect.h"
#include "host/plan/render_plan.h"

namespace kelto::editor {

/// A place on the photo, in its pixels.
struct PhotoPoint {
  double x = 0.0, y = 0.0;
  bool operator==(const PhotoPoint&) const = default;
};

/// Lengths are in photo pixels.
struct ViewLimits {
  double photoWidth = 1.0, photoHeight = 1.0;
  double shape = 1.0;                    ///< height over width of every view
  double narrowest = 0.0, widest = 1e9;  ///< of the greatest and the smallest zoom
  double frameWidth = 1.0;               ///< pixels of the film
  bool beyondEdges = false;              ///< views may show what lies beside the photo
  bool operator==(const ViewLimits&) const = default;

  /// The width of the largest view that a change may make: of one that shows nothing but photo,
  /// unless views may go beyond its edges.
  double WidestAllowed() const;
};

/// The limits of a plan's views over a photo of this size in pixels, upright.
ViewLimits LimitsOf(const host::RenderPlan& plan, PixelSize photo, bool beyondEdges);

/// `view`, moved into the photo where the limits ask for it; in its middle along a side where the
/// view is longer than the photo. Its size stays.
host::PhotoRect Inside(host::PhotoRect view, const ViewLimits& limits);

/// A view of the limits' shape about a point, of the width nearest to `width` that they allow, and
/// inside the photo where they ask for it.
host::PhotoRect ViewAbout(PhotoPoint middle, double width, const ViewLimits& limits);

/// How many frame pixels a pixel of the photo takes across: above 1 the film shows fewer details
/// than it has pixels.
double Enlargement(const host::PhotoRect& view, const ViewLimits& limits);

}  // namespace kelto::editor
