#include "editor/rules/view_drag.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kelto::editor {
namespace {

using host::PhotoRect;

struct Corner {
  Grip grip;
  double right, down;  ///< 0 or 1: which ends of the view
};
constexpr std::array kCorners = {
    Corner{Grip::kTopLeft, 0.0, 0.0}, Corner{Grip::kTopRight, 1.0, 0.0},
    Corner{Grip::kBottomLeft, 0.0, 1.0}, Corner{Grip::kBottomRight, 1.0, 1.0}};

Corner CornerOf(Grip grip) {
  for (const Corner& corner : kCorners) {
    if (corner.grip == grip) return corner;
  }
  return kCorners[0];
}

bool Contains(const PhotoRect& view, PhotoPoint point) {
  return point.x >= view.x && point.x <= view.Right() && point.y >= view.y &&
         point.y <= view.Bottom();
}

/// The distance from `point` to a corner on the canvas.
double Distance(const PhotoRect& view, const Corner& corner, const CanvasTransform& transform,
                CanvasPoint point) {
  const CanvasPoint at =
      transform.ToCanvas({view.x + corner.right * view.width, view.y + corner.down * view.height});
  return std::hypot(at.x - point.x, at.y - point.y);
}

/// How a stretch of this length, moved along one axis, comes to lie with one of its ends or its
/// middle on one of the photo's. Nothing where none is within `reach`.
struct Snap {
  double begin, line;
};
std::optional<Snap> Snapped(double begin, double length, double photo, double reach) {
  std::optional<Snap> nearest;
  for (const double part : {0.5, 0.0, 1.0}) {
    const double line = part * photo, snapped = line - part * length;
    if (std::abs(snapped - begin) > reach) continue;
    if (nearest && std::abs(nearest->begin - begin) <= std::abs(snapped - begin)) continue;
    nearest = Snap{snapped, line};
  }
  return nearest;
}

DraggedView Moved(const ViewDrag& drag, PhotoPoint pointer, const DragKeys& keys,
                  const ViewLimits& limits, double reach) {
  double right = pointer.x - drag.pressed.x, down = pointer.y - drag.pressed.y;
  const bool across = std::abs(right) >= std::abs(down);
  if (keys.lockAxis) (across ? down : right) = 0.0;
  DraggedView dragged{drag.from, {}, {}};
  dragged.view.x += right;
  dragged.view.y += down;
  if (!keys.noSnap) {
    if (const auto x = Snapped(dragged.view.x, drag.from.width, limits.photoWidth, reach);
        x && !(keys.lockAxis && !across)) {
      dragged.view.x = x->begin;
      dragged.snappedX = x->line;
    }
    if (const auto y = Snapped(dragged.view.y, drag.from.height, limits.photoHeight, reach);
        y && !(keys.lockAxis && across)) {
      dragged.view.y = y->begin;
      dragged.snappedY = y->line;
    }
  }
  dragged.view = Inside(dragged.view, limits);
  return dragged;
}

/// The greatest width of a view that keeps a point in its place and stays within 0..`photo`, in
/// units of the view's length along the axis. `part` of the view lies before the point.
double RoomAbout(double point, double part, double photo) {
  double room = 1e18;
  if (part > 0.0) room = std::min(room, point / part);
  if (part < 1.0) room = std::min(room, (photo - point) / (1.0 - part));
  return room;
}

DraggedView Resized(const ViewDrag& drag, PhotoPoint pointer, const DragKeys& keys,
                    const ViewLimits& limits, double reach) {
  const Corner corner = CornerOf(drag.grip);
  const PhotoRect& from = drag.from;
  // The share of the view that lies before the point which stays.
  const double partX = keys.aboutMiddle ? 0.5 : 1.0 - corner.right;
  const double partY = keys.aboutMiddle ? 0.5 : 1.0 - corner.down;
  const PhotoPoint anchor{from.x + partX * from.width, from.y + partY * from.height};
  // Of what the pointer has moved, the part along the view's diagonal counts.
  const double signX = corner.right * 2 - 1, signY = corner.down * 2 - 1;
  const double grown =
      ((pointer.x - drag.pressed.x) * signX + (pointer.y - drag.pressed.y) * signY * limits.shape) /
      (1.0 + limits.shape * limits.shape);
  double width = from.width + grown * (keys.aboutMiddle ? 2.0 : 1.0);

  std::optional<double> snappedX, snappedY;
  if (!keys.noSnap) {
    const double forward = keys.aboutMiddle ? 0.5 : 1.0;
    double nearest = reach;
    for (const double part : {0.0, 0.5, 1.0}) {
      const double lineX = part * limits.photoWidth, lineY = part * limits.photoHeight;
      const double toX = (lineX - anchor.x) * signX / forward;
      const double toY = (lineY - anchor.y) * signY / forward / limits.shape;
      if (toX > 0.0 && std::abs(toX - width) * forward <= nearest) {
        nearest = std::abs(toX - width) * forward;
        snappedX = lineX;
        snappedY.reset();
      }
      if (toY > 0.0 && std::abs(toY - width) * forward < nearest) {
        nearest = std::abs(toY - width) * forward;
        snappedY = lineY;
        snappedX.reset();
      }
    }
    if (snappedX) width = (*snappedX - anchor.x) * signX / forward;
    if (snappedY) width = (*snappedY - anchor.y) * signY / forward / limits.shape;
  }

  double widest = limits.WidestAllowed();
  if (!limits.beyondEdges) {
    // A view that has been outside is drawn in, so the point may lie outside, too.
    const double room = std::min(RoomAbout(anchor.x, partX, limits.photoWidth),
                                 RoomAbout(anchor.y, partY, limits.photoHeight) / limits.shape);
    if (room >= limits.narrowest) widest = std::min(widest, room);
  }
  const double allowed = std::clamp(width, limits.narrowest, std::max(limits.narrowest, widest));
  if (allowed != width) {
    snappedX.reset();
    snappedY.reset();
  }
  const double height = allowed * limits.shape;
  const PhotoRect view{anchor.x - partX * allowed, anchor.y - partY * height, allowed, height};
  return {Inside(view, limits), snappedX, snappedY};
}

}  // namespace

Hit HitAt(std::span<const PhotoRect> views, int selected, const CanvasTransform& transform,
          CanvasPoint point, double reach) {
  const auto area = [&](int view) { return views[view].width * views[view].height; };
  const int count = static_cast<int>(views.size());
  if (selected >= 0 && selected < count) {
    for (const Corner& corner : kCorners) {
      if (Distance(views[selected], corner, transform, point) <= reach) {
        return {selected, corner.grip};
      }
    }
  }
  Hit nearest;
  double distance = reach;
  for (int view = 0; view < count; ++view) {
    for (const Corner& corner : kCorners) {
      const double away = Distance(views[view], corner, transform, point);
      if (away > distance || (nearest.view >= 0 && away == distance)) continue;
      nearest = {view, corner.grip};
      distance = away;
    }
  }
  if (nearest.view >= 0) return nearest;
  const PhotoPoint at = transform.ToPhoto(point);
  for (int view = 0; view < count; ++view) {
    if (!Contains(views[view], at)) continue;
    const bool smaller = nearest.view < 0 || area(view) < area(nearest.view);
    const bool equal = nearest.view >= 0 && area(view) == area(nearest.view);
    if (smaller || (equal && view == selected)) nearest = {view, Grip::kInside};
  }
  return nearest;
}

DraggedView Dragged(const ViewDrag& drag, PhotoPoint pointer, const DragKeys& keys,
                    const ViewLimits& limits, double reach) {
  if (drag.grip == Grip::kNone) return {drag.from, {}, {}};
  if (drag.grip == Grip::kInside) return Moved(drag, pointer, keys, limits, reach);
  return Resized(drag, pointer, keys, limits, reach);
}

PhotoRect ResizedAbout(const PhotoRect& view, PhotoPoint point, double factor,
                       const ViewLimits& limits) {
  const double width = std::clamp(view.width * factor, limits.narrowest, limits.WidestAllowed());
  const double height = width * limits.shape;
  const double partX = (point.x - view.x) / view.width, partY = (point.y - view.y) / view.height;
  return Inside({point.x - partX * width, point.y - partY * height, width, height}, limits);
}

PhotoRect Nudged(const PhotoRect& view, double right, double down, const ViewLimits& limits) {
  return Inside({view.x + right, view.y + down, view.width, view.height}, limits);
}

}  // namespace kelto::editor
