// Views as parts of the photo.
#pragma once

#include <vector>

#include "framing/drawn_area.h"
#include "host/options/given_view.h"
#include "host/options/photo_rect.h"
#include "host/options/view.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

/// Turns views into the parts of a photo that they show in a plan's film, and back, by the module's
/// own geometry. The first and last columns and rows of a frame show the first and last ones of the
/// part; where the filters reduce, they lie a pixel and a half of the photo further on.
class PhotoViews {
 public:
  /// `photo` in pixels, upright.
  PhotoViews(const RenderPlan& plan, PixelSize photo);

  /// All of the photo; its shape is not a view's.
  PhotoRect Photo() const;
  /// The smallest view that shows all of the photo.
  PhotoRect Whole() const;
  /// The largest view that shows nothing but photo, in its middle.
  PhotoRect Fill() const;
  /// The smallest view that shows all of `part`, moved into the photo where it reaches beyond it;
  /// in the middle along a side where it is longer than the photo. Throws UsageError, with the
  /// photo's size, for a part that lies outside.
  PhotoRect Around(const PhotoRect& part) const;
  /// `view` moved into the photo; in the middle along a side where it is longer than the photo.
  PhotoRect Inside(PhotoRect view) const;
  /// A view of this width about a point; no smaller than zoom 20 shows.
  PhotoRect About(double x, double y, double width) const;

  PhotoRect PartOf(const View& view) const;
  /// `part` must have a view's shape, as those above have. Throws UsageError when the effect cannot
  /// look so close or from so far.
  View ViewOf(const PhotoRect& part) const;
  /// The view that people mean: of a part of the photo, the one around it. Throws UsageError.
  View ViewOf(const GivenView& given) const;
  /// Those of a tour, in its order. Throws Error, "views[N].view: ...", for one that the effect
  /// cannot show.
  std::vector<View> ViewsOf(const std::vector<TourView>& tour) const;

 private:
  DrawnFrame frame_;
  double baseWidth_, baseHeight_;  ///< of what zoom 1 shows
};

}  // namespace kelto::host
