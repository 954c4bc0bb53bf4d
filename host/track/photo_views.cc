#include "host/track/photo_views.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <variant>

#include "catalogue/parameters.h"
#include "host/base/error.h"
#include "host/effect/render_state.h"
#include "host/track/drawn_frame.h"

namespace kelto::host {
namespace {

/// Where a stretch of this length begins that is moved into 0..`end`, or about its middle.
double Moved(double begin, double length, double end) {
  if (length >= end) return (end - length) / 2;
  return std::clamp(begin, 0.0, end - length);
}

}  // namespace

PhotoViews::PhotoViews(const RenderPlan& plan, PixelSize photo)
    : frame_(FrameToDraw(plan, photo, FieldState(plan, 0, 0),
                         SwitchedOn(plan.FindSetting(key::kSquarePixels), true))) {
  const DrawnArea base = AreaOf(frame_, View{});
  baseWidth_ = base.right - base.left;
  baseHeight_ = base.bottom - base.top;
}

PhotoRect PhotoViews::Photo() const {
  return {0.0, 0.0, static_cast<double>(frame_.photo.width),
          static_cast<double>(frame_.photo.height)};
}

PhotoRect PhotoViews::About(double x, double y, double width) const {
  width = std::max(width, baseWidth_ / kMaxZoom);
  const double height = width * baseHeight_ / baseWidth_;
  return {x - width / 2, y - height / 2, width, height};
}

PhotoRect PhotoViews::Whole() const {
  const PhotoRect photo = Photo();
  return About(photo.CentreX(), photo.CentreY(),
               std::max(photo.width, photo.height * baseWidth_ / baseHeight_));
}

PhotoRect PhotoViews::Fill() const {
  const PhotoRect photo = Photo();
  return About(photo.CentreX(), photo.CentreY(),
               std::min(photo.width, photo.height * baseWidth_ / baseHeight_));
}

PhotoRect PhotoViews::Around(const PhotoRect& part) const {
  const PhotoRect photo = Photo();
  if (part.x >= photo.width || part.y >= photo.height || part.Right() <= 0.0 ||
      part.Bottom() <= 0.0) {
    throw UsageError("lies outside the photo, which is " + std::to_string(frame_.photo.width) +
                     "x" + std::to_string(frame_.photo.height) + " pixels");
  }
  return Inside(About(part.CentreX(), part.CentreY(),
                      std::max(part.width, part.height * baseWidth_ / baseHeight_)));
}

PhotoRect PhotoViews::Inside(PhotoRect view) const {
  const PhotoRect photo = Photo();
  view.x = Moved(view.x, view.width, photo.width);
  view.y = Moved(view.y, view.height, photo.height);
  return view;
}

PhotoRect PhotoViews::PartOf(const View& view) const {
  const DrawnArea area = AreaOf(frame_, view);
  return {area.left, area.top, area.right - area.left, area.bottom - area.top};
}

View PhotoViews::ViewOf(const PhotoRect& part) const {
  constexpr double kRounding = 1e-5;  // of the module's single precision
  View view{baseWidth_ / part.width, 0.0, 0.0};
  if (view.zoom < kMinZoom * (1 - kRounding) || view.zoom > kMaxZoom * (1 + kRounding)) {
    throw UsageError("takes a zoom of " + std::to_string(view.zoom) +
                     ", and zooms go from 0.1 to 20");
  }
  view.zoom = std::clamp(view.zoom, kMinZoom, kMaxZoom);
  // The centre enters evenly, from where the zoom alone has it.
  const PhotoRect at0 = PartOf({view.zoom, 0.0, 0.0}), at1 = PartOf({view.zoom, 1.0, 1.0});
  view.centreX = (part.CentreX() - at0.CentreX()) / (at1.CentreX() - at0.CentreX());
  view.centreY = (part.CentreY() - at0.CentreY()) / (at1.CentreY() - at0.CentreY());
  if (std::abs(view.centreX) > kMaxCentre || std::abs(view.centreY) > kMaxCentre) {
    throw UsageError("lies too far from the photo");
  }
  return view;
}

View PhotoViews::ViewOf(const GivenView& given) const {
  const auto* part = std::get_if<PhotoRect>(&given);
  return part != nullptr ? ViewOf(Around(*part)) : std::get<View>(given);
}

std::vector<View> PhotoViews::ViewsOf(const std::vector<TourView>& tour) const {
  std::vector<View> views;
  views.reserve(tour.size());
  for (size_t i = 0; i < tour.size(); ++i) {
    try {
      views.push_back(ViewOf(tour[i].view));
    } catch (const Error& error) {
      throw Error("views[" + std::to_string(i) + "].view: " + TextOf(tour[i].view) + ": " +
                  error.what());
    }
  }
  return views;
}

}  // namespace kelto::host
