#include "host/options/given_view.h"

#include "host/options/number.h"
#include "host/options/view.h"

namespace kelto::host {
namespace {

std::string Text(const View& view) {
  const std::string zoom = NumberText(view.zoom);
  if (view == View{view.zoom, 0.0, 0.0}) return zoom;
  return zoom + "@" + NumberText(view.centreX) + "," + NumberText(view.centreY);
}

std::string Text(const PhotoRect& part) {
  return NumberText(part.x) + "," + NumberText(part.y) + "," + NumberText(part.width) + "," +
         NumberText(part.height);
}

}  // namespace

GivenView ParseGivenView(std::string_view text) {
  if (IsPhotoRect(text)) return ParsePhotoRect(text);
  return ParseView(text);
}

std::string TextOf(const GivenView& view) {
  return std::visit([](const auto& one) { return Text(one); }, view);
}

}  // namespace kelto::host
