#include "editor/rules/canvas_transform.h"

#include <algorithm>

namespace kelto::editor {
namespace {

constexpr double kLargestScale = 32.0;
constexpr double kSmallestPhoto = 64.0;
/// Canvas pixels of the photo that stay in sight, or all where it is smaller.
constexpr double kInSight = 64.0;

/// Where a stretch of this length begins so that `kInSight` of it lies within 0..`room`.
double KeptInSight(double begin, double length, double room) {
  const double sight = std::min({kInSight, length, room});
  return std::clamp(begin, sight - length, room - sight);
}

}  // namespace

CanvasPoint CanvasTransform::ToCanvas(PhotoPoint point) const {
  return {left + point.x * scale, top + point.y * scale};
}

PhotoPoint CanvasTransform::ToPhoto(CanvasPoint point) const {
  return {(point.x - left) / scale, (point.y - top) / scale};
}

CanvasTransform FittedTransform(const ViewLimits& photo, CanvasSize canvas, double margin) {
  const double across = std::max(1.0, canvas.width - 2 * margin) / photo.photoWidth;
  const double down = std::max(1.0, canvas.height - 2 * margin) / photo.photoHeight;
  CanvasTransform fitted;
  fitted.scale = std::min({across, down, kLargestScale});
  fitted.left = (canvas.width - photo.photoWidth * fitted.scale) / 2;
  fitted.top = (canvas.height - photo.photoHeight * fitted.scale) / 2;
  return fitted;
}

CanvasTransform ZoomedAbout(const CanvasTransform& transform, CanvasPoint point, double factor,
                            const ViewLimits& photo) {
  const double smallest =
      std::min(kLargestScale, kSmallestPhoto / std::max(photo.photoWidth, photo.photoHeight));
  const double scale = std::clamp(transform.scale * factor, smallest, kLargestScale);
  const double grown = scale / transform.scale;
  return {scale, point.x + (transform.left - point.x) * grown,
          point.y + (transform.top - point.y) * grown};
}

CanvasTransform MovedBy(const CanvasTransform& transform, double right, double down,
                        const ViewLimits& photo, CanvasSize canvas) {
  CanvasTransform moved = transform;
  moved.left = KeptInSight(moved.left + right, photo.photoWidth * transform.scale, canvas.width);
  moved.top = KeptInSight(moved.top + down, photo.photoHeight * transform.scale, canvas.height);
  return moved;
}

}  // namespace kelto::editor
