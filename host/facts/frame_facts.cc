#include "host/facts/frame_facts.h"

#include "catalogue/parameters.h"
#include "host/effect/drawn_state.h"
#include "host/effect/render_state.h"
#include "host/track/drawn_frame.h"

namespace kelto::host {
FrameInspector::FrameInspector(const std::string& modulePath, const RenderPlan& plan,
                               const Photo& photo, double quality)
    : plan_(plan),
      photo_{photo.width, photo.height},
      quality_(quality),
      motion_(modulePath, plan, photo_),
      squarePixels_(motion_.At(0).squarePixels),
      shape_(RoomOf(plan, photo_).shape) {}

FrameFacts FrameInspector::Of(int32_t number, int32_t field) {
  const FrameMotion motion = motion_.At(number, field);
  FrameFacts facts;
  facts.number = number;
  facts.field = field;
  facts.seconds = (number + 0.5 * field) / plan_.format.rate.PerSecond();
  facts.time = hfx::FrameTime(FieldState(plan_, number, field));
  facts.view = motion.view;
  facts.speed = SpeedAt({number, field}, motion);
  lastMoment_ = {number, field};
  lastMotion_ = motion;
  facts.area = Area(facts, motion.target ? motion.view : View{});
  // The source display is always drawn fast.
  facts.filter = motion.target && quality_ > kFastQuality ? motion.filter : entry::kFilterRealTime;
  return facts;
}

DrawnArea FrameInspector::ViewArea(const FrameFacts& facts) const {
  return Area(facts, facts.view);
}

FrameMotion FrameInspector::MotionAt(const Moment& moment) {
  return moment == lastMoment_ ? lastMotion_ : motion_.At(moment.number, moment.field);
}

motion::Speed FrameInspector::SpeedAt(const Moment& moment, const FrameMotion& motion) {
  const int32_t fields = FieldsOf(plan_);
  const double seconds = 1.0 / (plan_.format.rate.PerSecond() * fields);
  const int64_t place = int64_t{moment.number} * fields + moment.field;
  if (place == 0 && int64_t{plan_.frames} * fields < 2) return {};
  const int64_t other = place > 0 ? place - 1 : 1;
  const FrameMotion beside =
      MotionAt({static_cast<int32_t>(other / fields), static_cast<int32_t>(other % fields)});
  const FrameMotion &from = place > 0 ? beside : motion, &to = place > 0 ? motion : beside;
  motion::Speed speed =
      motion::SpeedBetween(WindowOf(from.view, shape_), WindowOf(to.view, shape_), seconds);
  if (from.length && to.length) speed.perceived = (*to.length - *from.length) / seconds;
  return speed;
}

DrawnArea FrameInspector::Area(const FrameFacts& facts, const View& view) const {
  const hfx::RenderState state = FieldState(plan_, facts.number, facts.field, quality_);
  return AreaOf(FrameToDraw(plan_, photo_, state, squarePixels_), view);
}

}  // namespace kelto::host
