#include "host/moves/face_move.h"

#include <algorithm>
#include <cmath>

#include "host/moves/stretch.h"

namespace kelto::host {
namespace {

/// Of a face's height: where its eyes are, and what is left around it, more above for the hair.
constexpr double kEyes = 0.4, kAbove = 0.5, kAround = 0.3;
/// Of the last view's height: where eyes look best, and how much of it faces may take.
constexpr double kEyeLine = 1.0 / 3.0, kMostOfView = 0.6;

/// The faces with this share of the usual room around them, as far as the photo reaches.
PhotoRect RoomFor(const std::vector<PhotoRect>& faces, const PhotoRect& photo, double share = 1) {
  double left = photo.width, top = photo.height, right = 0, bottom = 0;
  for (const PhotoRect& face : faces) {
    left = std::min(left, face.x - share * kAround * face.width);
    top = std::min(top, face.y - share * kAbove * face.height);
    right = std::max(right, face.Right() + share * kAround * face.width);
    bottom = std::max(bottom, face.Bottom() + share * kAround * face.height);
  }
  left = std::max(left, 0.0);
  top = std::max(top, 0.0);
  return {left, top, std::min(right, photo.width) - left, std::min(bottom, photo.height) - top};
}

double EyeLineOf(const std::vector<PhotoRect>& faces) {
  double sum = 0, weights = 0;
  for (const PhotoRect& face : faces) {
    sum += (face.y + kEyes * face.height) * face.height;
    weights += face.height;
  }
  return sum / weights;
}

/// The view of this width that has `room`, with the eyes on its line as far as that goes.
PhotoRect ViewWith(const PhotoViews& views, const PhotoRect& room, double eyes, double width) {
  PhotoRect view = views.About(room.CentreX(), 0, width);
  view.y = BeginHaving(eyes - kEyeLine * view.height, view.height, room.y, room.Bottom());
  view.x = BeginHaving(view.x, view.width, room.x, room.Right());
  return views.Inside(view);
}

}  // namespace

std::vector<PhotoRect> FaceMove(const PhotoViews& views, const std::vector<PhotoRect>& faces,
                                Fit fit, double amount) {
  const PhotoRect photo = views.Photo(), fill = views.Fill();
  const PhotoRect widest = fit == Fit::kFill ? fill : views.Whole();
  const double shape = fill.width / fill.height;
  // The narrowest view with room for all; with less of it rather than with a face cut.
  PhotoRect room;
  double least = 0;
  for (const double share : {1.0, 0.75, 0.5, 0.25, 0.0}) {
    room = RoomFor(faces, photo, share);
    least = std::max(room.width, room.height * shape);
    if (least <= widest.width) break;
  }
  if (least <= widest.width) {
    const double goal =
        std::min(fit == Fit::kBeside ? widest.width : fill.width, widest.width / amount);
    const double calm = std::max(room.width, room.height * shape / kMostOfView);
    const double width = std::min(widest.width, std::max(goal, std::max(least, calm)));
    const PhotoRect last = ViewWith(views, room, EyeLineOf(faces), width);
    const PhotoRect first =
        fit == Fit::kFill ? views.Inside(views.About(last.CentreX(), last.CentreY(), fill.width))
                          : widest;
    return {first, last};
  }
  const bool across = room.width / fill.width >= room.height / fill.height;
  const auto [first, last] =
      std::minmax_element(faces.begin(), faces.end(), [&](const PhotoRect& a, const PhotoRect& b) {
        return across ? a.CentreX() < b.CentreX() : a.CentreY() < b.CentreY();
      });
  const auto showing = [&](const PhotoRect& face) {
    return ViewWith(views, RoomFor({face}, photo), EyeLineOf({face}), fill.width);
  };
  return {showing(*first), showing(*last)};
}

}  // namespace kelto::host
