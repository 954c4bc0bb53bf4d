#include "host/options/view.h"

#include <cmath>
#include <optional>

#include "host/base/error.h"
#include "host/options/number.h"

namespace kelto::host {
namespace {

UsageError BadForm() {
  return UsageError(
      "a view is ZOOM or ZOOM@X,Y with the centre in picture widths and heights, such as 2 or "
      "1.5@0.25,-0.1");
}

double ParseCentre(std::string_view text) {
  const auto centre = ParseNumber(text);
  if (!centre) throw BadForm();
  if (std::abs(*centre) > kMaxCentre) throw UsageError("a view's centre goes from -100 to 100");
  return *centre;
}

}  // namespace

View ParseView(std::string_view text) {
  View view;
  const size_t at = text.find('@');
  const auto zoom = ParseNumber(text.substr(0, at));
  if (!zoom) throw BadForm();
  if (*zoom < kMinZoom || *zoom > kMaxZoom) throw UsageError("a zoom goes from 0.1 to 20");
  view.zoom = *zoom;
  if (at == std::string_view::npos) return view;

  const std::string_view centre = text.substr(at + 1);
  const size_t comma = centre.find(',');
  if (comma == std::string_view::npos) throw BadForm();
  view.centreX = ParseCentre(centre.substr(0, comma));
  view.centreY = ParseCentre(centre.substr(comma + 1));
  return view;
}

}  // namespace kelto::host
