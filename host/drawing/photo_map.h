// The photo with the views of a film drawn over it.
#pragma once

#include <string>
#include <vector>

#include "host/drawing/drawing.h"
#include "host/facts/frame_facts.h"

namespace kelto::host {

/// One view to be outlined: where a key is, or several that see the same.
struct ViewMark {
  std::string numbers;  ///< such as "1", or "2, 3"
  std::string times;
  DrawnArea area;
};

/// A view for each key of the inspector's plan, those that see the same in one.
std::vector<ViewMark> MarksOf(FrameInspector& inspector);

/// Where the view's centre goes, in photo pixels, frame by frame; of long films not every frame.
std::vector<Point> PathOf(FrameInspector& inspector);

/// Draws `picture`, the whole photo of `size` pixels, as large as it fits into `room` together with
/// what the marks show beside it, and path and marks over it.
void DrawPhotoMap(Drawing& drawing, const Box& room, const FrameView& picture, PixelSize size,
                  const std::vector<ViewMark>& marks, const std::vector<Point>& path);

/// The height that DrawPhotoMap needs at a width, `most` at the most.
double MapHeight(double width, double most, PixelSize size, const std::vector<ViewMark>& marks);

}  // namespace kelto::host
