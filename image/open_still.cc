#include "image/open_still.h"

#include <utility>

namespace kelto {
namespace {

struct OffscreenWorldHolder {
  OffscreenWorldHolder() = default;
  OffscreenWorldHolder(const OffscreenWorldHolder&) = delete;
  OffscreenWorldHolder& operator=(const OffscreenWorldHolder&) = delete;
  ~OffscreenWorldHolder() {
    if (world != nullptr) DisposeGWorld(world);
  }

  GWorldPtr world = nullptr;
};

}  // namespace

OSErr OpenStill::Open(const FSSpec& file) {
  Close();
  const OSErr error = GetGraphicsImporterForFile(&file, &importer_);
  if (error != noErr) importer_ = nullptr;
  return error;
}

OSErr OpenStill::GetBounds(StillRect* bounds) const {
  return GraphicsImportGetNaturalBounds(importer_, bounds);
}

OSErr OpenStill::DrawAndClose(const StillRect& bounds, const IplImage& target) {
  OffscreenWorldHolder world;
  OSErr error = QTNewGWorldFromPtr(&world.world, k32BGRAPixelFormat, &bounds, nullptr, nullptr, 0,
                                   target.imageData, target.widthStep);
  if (error != noErr) return error;
  error = GraphicsImportSetGWorld(importer_, world.world, nullptr);
  if (error == noErr) error = GraphicsImportDraw(importer_);
  const OSErr closeError = Close();
  return error != noErr ? error : closeError;
}

OSErr OpenStill::Close() {
  if (importer_ == nullptr) return noErr;
  return CloseComponent(std::exchange(importer_, nullptr));
}

}  // namespace kelto
