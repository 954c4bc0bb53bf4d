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
  if (state.loadFailed || !record) return;
  const int32_t wanted = KeepsNaturalSize(state) ? 1 : 0;
  if (state.workImages[0] && state.levels == state.appliedLevels && wanted == state.cacheState) {
    return;
  }
  state.imagePath = PathOfRecord(record);
  state.loadFailed = !ReloadImage(state, false);
  state.appliedLevels = state.levels;
  state.appliedCacheMode = state.cacheMode;
}

}  // namespace

bool RenderCurrentFrame(PanZoomState& state, const hfxRect& region) {
  if (const hfxImage* output = state.GetOutput(0)) {
    state.outputWidth = output->GetWidth();
    state.outputHeight = output->GetHeight();
  }
  ReloadWhereNeeded(state);
  EvaluateMotion(state);
  const bool loaded = state.workImages[0] && state.workImages[0]->imageData;
  if (!loaded && state.compositeOver != 0) {
    RenderWithoutImage(state);
  } else {
    RenderFrame(state, region);
  }
  return !state.Aborted();
}

}  // namespace kelto
