#include "host/facts/motion.h"

#include "catalogue/parameters.h"
#include "host/base/error.h"
#include "host/effect/drawn_state.h"
#include "host/effect/effect_settings.h"
#include "host/effect/render_state.h"
#include "host/files/path_text.h"
#include "host/track/keyed_plan.h"

namespace kelto::host {
namespace {

constexpr uint16_t kFirstModel = 1;
/// The smallest frame that the effect draws.
constexpr int32_t kSide = 2;

}  // namespace

Motion::Motion(const std::string& modulePath, const RenderPlan& plan, PixelSize photo)
    : plan_(KeyedPlan(plan, photo)),
      track_(ViewTrack::For(plan_, photo)),
      input_(kSide, kSide, hfxColorspaceRGB),
      output_(kSide, kSide, hfxColorspaceRGB) {
  std::string error;
  module_ = hfx::Module::Load(ForCalls(PathOf(modulePath)), &error);
  if (!module_) throw Error(error);
  effect_ = hfx::Effect::Create(*module_, kFirstModel, &error);
  if (!effect_) throw Error(modulePath + ": " + error);
  if (track_) {
    ApplyWithoutMove(*effect_, plan_.settings);
  } else {
    for (const Setting& setting : plan_.settings) Apply(*effect_, setting);
  }
  effect_->ParametersChanged();
  if (!effect_->BeginRender(plan_.playMode, &error)) throw Error("the effect: " + error);
}

Motion::~Motion() { effect_->EndRender(nullptr); }

FrameMotion Motion::At(int32_t number, int32_t field) {
  const hfx::RenderState state = FieldState(plan_, number, field);
  if (track_) ShowView(*effect_, track_->At(state));
  std::string error;
  if (!effect_->Render(state, input_.image(), output_.image(), &error)) {
    throw Error("the effect: " + error);
  }
  FrameMotion motion;
  motion.view = DrawnView(*effect_);
  if (track_) motion.length = track_->LengthAt(state);
  motion.target = DrawnEntry(*effect_, key::kDisplay) == entry::kDisplayTarget;
  motion.squarePixels = DrewSquarePixels(*effect_);
  motion.filter = DrawnEntry(*effect_, key::kFilter);
  motion.overVideo = DrawnEntry(*effect_, key::kCompositeOver) == entry::kOverVideo;
  motion.background = DrawnBackground(*effect_);
  return motion;
}

}  // namespace kelto::host
