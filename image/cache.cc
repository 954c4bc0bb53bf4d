#include "image/cache.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <new>
#include <utility>

#include "framing/cached_size.h"
#include "image/status_reset.h"
#include "resample/resample.h"
#include "state/module.h"

namespace kelto {
namespace {

PixelBlock BlockOf(const IplImage& image) {
  // Image data is declared as char; the engine's bytes are unsigned.
  auto* pixels = static_cast<uint8_t*>(static_cast<void*>(image.imageData));
  return {pixels, image.width, image.height, image.widthStep};
}

void Reduce(const IplImage& from, const IplImage& to) {
  ResampleJob job;
  job.source = BlockOf(from);
  job.dest = BlockOf(to);
  job.sourceRect = {.left = 0.5f,
                    .top = 0.5f,
                    .right = static_cast<float>(from.width) - 0.5f,
                    .bottom = static_cast<float>(from.height) - 0.5f};
  // Starts at 0 where the source starts at 0.5: kept as it is, cached pictures depend on it.
  job.destRect = {.left = 0.0f,
                  .top = 0.0f,
                  .right = static_cast<float>(to.width) - 0.5f,
                  .bottom = static_cast<float>(to.height) - 0.5f};
  job.filterMode = kFilterHiQual;
  ReduceImage(job);
}

}  // namespace

void ReleaseWorkImages(PanZoomState& state) {
  for (ImagePtr& image : state.picture.workImages) image.reset();
}

namespace {

void Allocate(IplImage* image) { iplAllocateImage(image, 0, 0); }

/// Allocates or counts an image, at the cost of other instances where it must.
void Obtain(PanZoomState& state, IplImage* image, void (*obtain)(IplImage*)) {
  const int32_t errorMode = iplGetErrMode();
  iplSetErrMode(IPL_ErrModeSilent);
  obtain(image);
  for (PanZoomState* other : InstanceRegistry()) {
    if (iplGetErrStatus() == IPL_StsOk) break;
    if (other == &state) continue;
    iplSetErrStatus(IPL_StsOk);
    ReleaseWorkImages(*other);
    obtain(image);
  }
  iplSetErrMode(errorMode);

  if (iplGetErrStatus() == IPL_StsOk) {
    EnterIntoCachePool(image);
    return;
  }
  char message[256];
  std::snprintf(message, sizeof(message),
                "KeltoPanAndZoom instance at %" PRIxPTR
                " failed to allocate memory for image, even when reclaiming memory from other "
                "instances.\n",
                reinterpret_cast<uintptr_t>(&state));
  hfxGlobal::ConsolePrintf("%s", message);
}

}  // namespace

void AllocateImageData(PanZoomState& state, IplImage* image) { Obtain(state, image, Allocate); }

void CountImageData(PanZoomState& state, IplImage* image) { Obtain(state, image, iplxCountImage); }

IplImage* NewCachedImageHeader(int32_t width, int32_t height) {
  return iplCreateImageHeader(4, 0, IPL_DEPTH_8U, "MSI", "MSI", IPL_DATA_ORDER_PIXEL, IPL_ORIGIN_TL,
                              IPL_ALIGN_QWORD, width, height, nullptr, nullptr, nullptr, nullptr);
}

void EnforceCacheBudget(PanZoomState& state) {
  for (PanZoomState* other : InstanceRegistry()) {
    if (Module().cachedBytes <= kCacheBudget) return;
    if (other != &state) ReleaseWorkImages(*other);
  }
}

bool KeepsNaturalSize(const PanZoomState& state) {
  const PixelSize picture = {static_cast<int32_t>(state.picture.imageWidth),
                             static_cast<int32_t>(state.picture.imageHeight)};
  return KeepsNaturalSize(state.render.playMode, picture,
                          {state.render.outputWidth, state.render.outputHeight});
}

void ReduceToVideoResolution(PanZoomState& state) {
  if (state.picture.workImages[0] == nullptr) return;
  if (KeepsNaturalSize(state)) {
    state.picture.cacheState = 1;
    return;
  }
  const hfxImage* output = state.GetOutput(0);
  if (output == nullptr) return;

  const StatusReset resetOnReturn;
  const IplImage& natural = *state.picture.workImages[0];
  const PixelSize size =
      ReducedSize({natural.width, natural.height}, {output->GetWidth(), output->GetHeight()});
  ImagePtr reduced(NewCachedImageHeader(size.width, size.height));
  if (iplGetErrStatus() != IPL_StsOk) return;
  AllocateImageData(state, reduced.get());
  if (iplGetErrStatus() != IPL_StsOk) return;
  if (reduced->imageData == nullptr) throw 1;
  try {
    Reduce(natural, *reduced);
  } catch (const std::bad_alloc&) {
    return;
  }
  state.picture.workImages[0] = std::move(reduced);
  state.picture.cacheState = 0;
}

IplImage* SelectCachedLevel(const PanZoomState& state, const hfxImage& output) {
  const double zoom = state.settings.display != kDisplaySource ? state.settings.view.zoom : 1.0;
  const double fieldsPerFrame = state.GetFieldMode() == hfxFieldModeSeparate ? 2.0 : 1.0;
  const double neededWidth = output.GetWidth() * zoom;
  const double neededHeight = output.GetHeight() * fieldsPerFrame * zoom;

  IplImage* selected = state.picture.workImages[0].get();
  for (const ImagePtr& level : state.picture.workImages) {
    if (level == nullptr || !(level->width > neededWidth) || !(level->height > neededHeight)) break;
    selected = level.get();
  }
  return selected;
}

}  // namespace kelto
