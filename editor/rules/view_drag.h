// What drags, wheel and keys make of a view.
#pragma once

#include <optional>
#include <span>

#include "editor/rules/canvas_transform.h"
#include "editor/rules/view_limits.h"
#include "host/options/photo_rect.h"

namespace kelto::editor {

/// Where a view is held.
enum class Grip { kNone, kInside, kTopLeft, kTopRight, kBottomLeft, kBottomRight };

struct Hit {
  int view = -1;  ///< -1 for none
  Grip grip = Grip::kNone;
  bool operator==(const Hit&) const = default;
};

/// What a press at `point` holds: a corner within `reach` canvas pixels, the selected view's before
/// others', else the smallest view that `point` lies in; of equal ones the selected one.
Hit HitAt(std::span<const host::PhotoRect> views, int selected, const CanvasTransform& transform,
          CanvasPoint point, double reach);

/// A drag that has begun.
struct ViewDrag {
  Grip grip = Grip::kNone;
  host::PhotoRect from;  ///< the view as it was
  PhotoPoint pressed;
};

struct DragKeys {
  bool aboutMiddle = false;  ///< corners resize about the middle instead of the opposite corner
  bool lockAxis = false;     ///< moves go along the axis of the longer way only
  bool noSnap = false;
};

struct DraggedView {
  host::PhotoRect view;
  /// Where it has snapped to: x of an upright line, y of a level one, in photo pixels.
  std::optional<double> snappedX, snappedY;
};

/// The view when the pointer has come to `pointer`. It snaps to the photo's edges and middle where
/// one of its own edges or its middle comes within `reach` photo pixels.
DraggedView Dragged(const ViewDrag& drag, PhotoPoint pointer, const DragKeys& keys,
                    const ViewLimits& limits, double reach);

/// `view`, `factor` times as wide about a point of the photo that keeps its place in the view, as
/// far as the limits allow.
host::PhotoRect ResizedAbout(const host::PhotoRect& view, PhotoPoint point, double factor,
                             const ViewLimits& limits);

/// `view` moved by photo pixels, as far as the limits allow.
host::PhotoRect Nudged(const host::PhotoRect& view, double right, double down,
                       const ViewLimits& limits);

}  // namespace kelto::editor
