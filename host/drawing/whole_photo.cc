#include "host/drawing/whole_photo.h"

#include <algorithm>
#include <cmath>

#include "catalogue/parameters.h"
#include "host/options/size.h"

namespace kelto::host {

RenderPlan WholePhoto(const RenderPlan& plan, const Photo& photo, double most) {
  RenderPlan whole;
  whole.photo = plan.photo;
  whole.rotate = plan.rotate;
  // A frame of the photo's own shape; without keys the effect fits the photo into it.
  const double scale = std::min(1.0, most / std::max(photo.width, photo.height));
  const auto side = [&](int32_t pixels) {
    return std::max(kMinFrameSide, static_cast<int32_t>(std::lround(pixels * scale / 2)) * 2);
  };
  whole.format.size = {side(photo.width), side(photo.height)};
  whole.Set(key::kDisplay, std::string(entry::kDisplayTarget));
  whole.Set(key::kFilter, std::string(entry::kFilterHiQual));
  if (const Setting* levels = plan.FindSetting(key::kLevels)) whole.settings.push_back(*levels);
  whole.linearLight = plan.linearLight;
  whole.transparent = plan.transparent;
  const Setting* background = plan.FindSetting(key::kBackgroundColor);
  if (photo.transparent && background != nullptr) whole.settings.push_back(*background);
  return whole;
}

}  // namespace kelto::host
