#include "editor/rules/view_limits.h"

#include <algorithm>

#include "framing/view.h"
#include "host/track/photo_views.h"

namespace kelto::editor {
namespace {

/// Where a stretch of this length begins that is moved into 0..`end`, or about its middle.
double Moved(double begin, double length, double end) {
  if (length >= end) return (end - length) / 2;
  return std::clamp(begin, 0.0, end - length);
}

}  // namespace

double ViewLimits::WidestAllowed() const {
  if (beyondEdges) return widest;
  // A long photo may not fill the frame even at the greatest zoom.
  return std::max(std::min({widest, photoWidth, photoHeight / shape}), narrowest);
}

ViewLimits LimitsOf(const host::RenderPlan& plan, PixelSize photo, bool beyondEdges) {
  const host::PhotoRect base = host::PhotoViews(plan, photo).PartOf(View{});
  ViewLimits limits;
  limits.photoWidth = photo.width;
  limits.photoHeight = photo.height;
  limits.shape = base.height / base.width;
  limits.narrowest = base.width / kMaxZoom;
  limits.widest = base.width / kMinZoom;
  limits.frameWidth = plan.format.size.width;
  limits.beyondEdges = beyondEdges;
  return limits;
}

host::PhotoRect Inside(host::PhotoRect view, const ViewLimits& limits) {
  if (limits.beyondEdges) return view;
  view.x = Moved(view.x, view.width, limits.photoWidth);
  view.y = Moved(view.y, view.height, limits.photoHeight);
  return view;
}

host::PhotoRect ViewAbout(PhotoPoint middle, double width, const ViewLimits& limits) {
  width = std::clamp(width, limits.narrowest, limits.WidestAllowed());
  const double height = width * limits.shape;
  return Inside({middle.x - width / 2, middle.y - height / 2, width, height}, limits);
}

double Enlargement(const host::PhotoRect& view, const ViewLimits& limits) {
  return limits.frameWidth / view.width;
}

}  // namespace kelto::editor
