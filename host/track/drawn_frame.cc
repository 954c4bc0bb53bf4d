#include "host/track/drawn_frame.h"

namespace kelto::host {

DrawnFrame FrameToDraw(const RenderPlan& plan, PixelSize photo, const hfx::RenderState& state,
                       bool squarePixels) {
  DrawnFrame frame;
  frame.photo = photo;
  frame.first = {plan.format.size.width, plan.format.size.height};
  frame.playMode = plan.playMode;
  frame.geometry.output = frame.first;
  if (plan.format.Interlaced()) {
    frame.geometry.output.height = (frame.first.height + (state.topField ? 1 : 0)) / 2;
  }
  frame.geometry.fieldMode = state.fieldMode;
  frame.geometry.videoType = state.videoType;
  frame.geometry.displayAspect = state.displayAspect;
  frame.geometry.squarePixels = squarePixels;
  return frame;
}

}  // namespace kelto::host
