#include "render/motion.h"

namespace kelto {
namespace {

/// What a frame time that reaches 1 becomes.
constexpr double kLastFrameTime = 0.9999999999999;

void PrepareMotion(PanZoomState& state) {
  if (!state.paramsChanged && state.motion && state.motion->IsFor(state.settings.pathType)) return;
  state.motion = Motion(ReadMotionKeys(state, state.settings.pathType));
  state.paramsChanged = false;
}

}  // namespace

double FrameTime(PanZoomState& state) {
  double frame = state.GetCurrentFrame();
  if (state.GetVideoType() == hfxVideoTypeProgressive) state.settings.progressive = true;
  if (state.GetField() == 1 && !state.settings.progressive) frame += 0.5;
  const int32_t total = state.GetTotalFrames();
  if (total <= 1) return 0.0;
  const double t = frame / (static_cast<double>(total) - 1.0);
  return t >= 1.0 ? kLastFrameTime : t;
}

void EvaluateMotion(PanZoomState& state) {
  PrepareMotion(state);
  state.settings.view = state.motion->At(FrameTime(state), state.settings.view);
}

}  // namespace kelto
