#include "plugin/PanZoomInstance.h"

#include "image/cache.h"
#include "plugin/choose_image.h"
#include "plugin/frame.h"
#include "plugin/parameters.h"
#include "state/module.h"

namespace kelto {

bool PanZoomInstance::RenderFrame(const hfxRect& region) {
  return RenderCurrentFrame(*this, region);
}

bool PanZoomInstance::CreateParameters() { return DeclareParameters(*this); }

int32_t PanZoomInstance::BeginRender() {
  const void* record = GetInstanceData(nullptr);
  if (Module().hostState) render.hostState = Module().hostState();
  render.playMode = hfxGetPlayMode();
  if (record) picture.imagePath = PathOfRecord(record);
  return 1;
}

int32_t PanZoomInstance::EndRender() {
  if (render.hostState == 1) ReleaseWorkImages(*this);
  render.hostState = -1;
  render.playMode = -1;
  return -1;
}

bool PanZoomInstance::ChooseImage() { return ChooseImageOf(*this); }

}  // namespace kelto
