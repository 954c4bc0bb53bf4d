#include "host/track/view_track.h"

#include <string>
#include <variant>

#include "catalogue/parameters.h"
#include "framing/frame_rects.h"
#include "host/effect/render_state.h"
#include "host/track/keyed_plan.h"
#include "host/track/planned_stops.h"

namespace kelto::host {
namespace {

motion::Path PathOf(const RenderPlan& plan) {
  const SettingValue* value = HeldValue(plan.FindSetting(key::kPath));
  const auto* entry = value == nullptr ? nullptr : std::get_if<std::string>(value);
  return entry != nullptr && *entry == entry::kPathSpline ? motion::Path::kSpline
                                                          : motion::Path::kLinear;
}

motion::Law LawOf(const RenderPlan& plan) {
  return plan.motion == MotionLaw::kFly ? motion::Law::kFly : motion::Law::kSteady;
}

}  // namespace

motion::Room RoomOf(const RenderPlan& plan, PixelSize photo) {
  const hfx::RenderState state = FrameState(plan, 0);
  FrameGeometry frame;
  frame.output = {plan.format.size.width, plan.format.size.height};
  frame.displayAspect = state.displayAspect;
  frame.videoType = state.videoType;
  frame.squarePixels = SwitchedOn(plan.FindSetting(key::kSquarePixels), true);
  const RectF base = ComputeFrameRects(frame, photo, View{}).source;
  const double width = 1.0 + base.right - base.left, height = 1.0 + base.bottom - base.top;
  const double across = photo.width / width / 2, down = photo.height / width / 2;
  return {-across, -down, across, down, height / width, 1.0 / kMinZoom};
}

std::unique_ptr<const ViewTrack> ViewTrack::For(const RenderPlan& plan, PixelSize photo) {
  if (plan.motion == MotionLaw::kLinear) return nullptr;
  return std::unique_ptr<const ViewTrack>(
      new ViewTrack(KeyedPlan(plan, photo), RoomOf(plan, photo)));
}

ViewTrack::ViewTrack(const RenderPlan& plan, const motion::Room& room)
    : shape_(room.shape),
      wholeFrames_(SwitchedOn(plan.FindSetting(key::kProgressive), false)),
      tour_(StopsOf(plan, room.shape), LawOf(plan), PathOf(plan), room,
            (plan.frames - 1) / plan.format.rate.PerSecond()) {}

double ViewTrack::TimeOf(const hfx::RenderState& state) const {
  hfx::RenderState moment = state;
  if (wholeFrames_) moment.field = 0;
  return hfx::FrameTime(moment);
}

View ViewTrack::At(const hfx::RenderState& state) const {
  return ViewOf(tour_.At(TimeOf(state)), shape_);
}

double ViewTrack::LengthAt(const hfx::RenderState& state) const {
  return tour_.LengthAt(TimeOf(state));
}

}  // namespace kelto::host
