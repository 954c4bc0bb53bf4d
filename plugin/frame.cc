#include "plugin/frame.h"

#include "image/cache.h"
#include "image/load.h"
#include "render/motion.h"
#include "render/pipeline.h"

namespace kelto {
namespace {

/// Loads the saved image when none is loaded, or when the loaded one was made for other source
/// levels or another size than this render wants.
void ReloadWhereNeeded(PanZoomState& state) {
  const void* record = state.GetInstanceData(nullptr);
  if (state.picture.loadFailed || !record) return;
  const int32_t wanted = KeepsNaturalSize(state) ? 1 : 0;
  if (state.picture.workImages[0] && state.settings.levels == state.picture.appliedLevels &&
      wanted == state.picture.cacheState) {
    return;
  }
  state.picture.imagePath = PathOfRecord(record);
  state.picture.loadFailed = !ReloadImage(state, false);
  state.picture.appliedLevels = state.settings.levels;
  state.picture.appliedCacheMode = state.settings.cacheMode;
}

}  // namespace

bool RenderCurrentFrame(PanZoomState& state, const hfxRect& region) {
  if (const hfxImage* output = state.GetOutput(0)) {
    state.render.outputWidth = output->GetWidth();
    state.render.outputHeight = output->GetHeight();
  }
  ReloadWhereNeeded(state);
  EvaluateMotion(state);
  const bool loaded = state.picture.workImages[0] && state.picture.workImages[0]->imageData;
  if (!loaded && state.settings.compositeOver != kOverColor) {
    RenderWithoutImage(state);
  } else {
    RenderFrame(state, region);
  }
  return !state.Aborted();
}

}  // namespace kelto
