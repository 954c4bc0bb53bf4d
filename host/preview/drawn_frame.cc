#include "host/preview/drawn_frame.h"

namespace kelto::host {

DrawnFrame FrameToDraw(const RenderPlan& plan, PixelSize photo, const hfx::RenderState& state,
                       bool squarePixels) {
  DrawnFrame frame;
  frame.photo = photo;
  frame.frame = {plan.format.size.width, plan.format.size.height};
  frame.output = frame.frame;
  if (plan.format.Interlaced()) {
    frame.output.height = (frame.frame.height + (state.topField ? 1 : 0)) / 2;
  }
  frame.fieldMode = state.fieldMode;
  frame.videoType = state.videoType;
  frame.playMode = plan.playMode;
  frame.displayAspect = state.displayAspect;
  frame.squarePixels = squarePixels;
  return frame;
}

}  // namespace kelto::host
