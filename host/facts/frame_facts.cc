#include "host/facts/frame_facts.h"

#include "host/effect/render_state.h"
#include "host/facts/drawn_frame.h"

namespace kelto::host {
namespace {

/// At this quality and below, and in the source display, the effect draws with its fastest filter.
constexpr double kFastQuality = 0.5;
constexpr const char* kFastFilter = "Filter: Real Time";

}  // namespace

FrameInspector::FrameInspector(const std::string& modulePath, const RenderPlan& plan,
                               const Photo& photo, double quality)
    : plan_(plan),
      photo_{photo.width, photo.height},
      quality_(quality),
      motion_(modulePath, plan),
      squarePixels_(motion_.At(0).squarePixels) {}

FrameFacts FrameInspector::Of(int32_t number, int32_t field) {
  const FrameMotion motion = motion_.At(number, field);
  FrameFacts facts;
  facts.number = number;
  facts.field = field;
  facts.seconds = (number + 0.5 * field) / plan_.format.rate.PerSecond();
  facts.time = hfx::FrameTime(FieldState(plan_, number, field));
  facts.view = motion.view;
  facts.area = Area(facts, motion.target ? motion.view : View{});
  facts.filter = motion.target && quality_ > kFastQuality ? motion.filter : kFastFilter;
  return facts;
}

DrawnArea FrameInspector::ViewArea(const FrameFacts& facts) const {
  return Area(facts, facts.view);
}

DrawnArea FrameInspector::Area(const FrameFacts& facts, const View& view) const {
  const hfx::RenderState state = FieldState(plan_, facts.number, facts.field, quality_);
  return AreaOf(FrameToDraw(plan_, photo_, state, squarePixels_), view);
}

}  // namespace kelto::host
