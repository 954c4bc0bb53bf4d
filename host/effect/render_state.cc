#include "host/effect/render_state.h"

namespace kelto::host {
namespace {

int32_t VideoTypeOf(const FilmFormat& format) {
  if (!format.Interlaced()) return hfxVideoTypeProgressive;
  const bool pal = format.rate == FrameRate{25, 1} || format.rate == FrameRate{50, 1};
  return pal ? hfxVideoType625 : hfxVideoType525;
}

}  // namespace

int32_t FieldsOf(const RenderPlan& plan) { return plan.format.Interlaced() ? 2 : 1; }

hfx::RenderState FrameState(const RenderPlan& plan, int32_t number, double quality) {
  hfx::RenderState state;
  state.currentFrame = number;
  state.totalFrames = plan.frames;
  state.quality = quality;
  state.videoType = VideoTypeOf(plan.format);
  state.displayAspect = plan.format.DisplayAspect();
  return state;
}

hfx::RenderState FieldState(const RenderPlan& plan, int32_t number, int32_t field, double quality) {
  hfx::RenderState state = FrameState(plan, number, quality);
  if (!plan.format.Interlaced()) return state;
  state.fieldMode = hfxFieldModeSeparate;
  state.field = field;
  state.topField = (plan.format.fields == FieldOrder::kTopFirst) == (field == 0);
  return state;
}

}  // namespace kelto::host
