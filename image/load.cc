#include "image/load.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "framing/pixel_size.h"
#include "image/cache.h"
#include "image/open_still.h"
#include "image/paths.h"
#include "image/status_reset.h"
#include "image/studio_levels.h"
#include "platform/hfx.h"
#include "platform/ipl.h"

namespace kelto {
namespace {

/// Thrown, and caught by LoadImage, when memory runs out.
constexpr int kOutOfMemory = 1;

bool LibraryFailed() { return iplGetErrStatus() != IPL_StsOk; }

/// The path text in a zero-filled record.
struct PathRecord {
  char text[kPathRecordSize] = {};

  explicit PathRecord(const std::string& path) {
    std::memcpy(text, path.data(), std::min(path.size(), sizeof(text) - 1));
  }
};

void SaveNetworkForm(PanZoomState& state) {
  char name[kPathRecordSize] = {};
  if (!ResolveNetworkPath(state.picture.imagePath.c_str(), name, sizeof(name))) return;
  state.picture.imagePath = name;
  SaveImagePath(state);
}

/// Looks for the file elsewhere and opens it there; saves the place when that works.
void Relocate(PanZoomState& state, bool interactive, OpenStill& still) {
  PathRecord path(state.picture.imagePath);
  const bool found =
      interactive ? LocateImageFile(path.text, sizeof(path.text)) : FindInKnownFolders(path.text);
  if (!found) return;
  FSSpec specification;
  if (MakeFileSpecification(path.text, &specification) != noErr) return;
  if (still.Open(specification) != noErr) return;
  state.picture.imagePath = path.text;
  SaveImagePath(state);
}

bool OpenImageFile(PanZoomState& state, bool interactive, OpenStill& still) {
  FSSpec specification;
  OSErr error = MakeFileSpecification(state.picture.imagePath.c_str(), &specification);
  if (error == noErr) error = still.Open(specification);
  if (error == noErr) {
    RememberImageFolder(state.picture.imagePath.c_str());
  } else {
    Relocate(state, interactive, still);
  }
  return still.isOpen();
}

/// Exchanges the pixels of two images. What each counts for in the accounts goes by its header.
void ExchangePixels(IplImage& one, IplImage& other) {
  std::swap(one.imageData, other.imageData);
  std::swap(one.imageDataOrigin, other.imageDataOrigin);
}

/// Converts rows to Y, Cr, Cb, from full-range levels through the studio range if asked, where they
/// lie: `rgb` has its rows in the pixels of `ycrcb`, at its own distance, which is not larger. A
/// row at a time from the last to the first, so that none is written before it is read, and levels
/// are found in the cache where they have just been written.
void ConvertInPlace(const IplImage& rgb, const IplImage& ycrcb, bool toStudioRange) {
  const auto rowBytes = static_cast<size_t>(rgb.width) * 4;
  const auto pixels = std::make_unique_for_overwrite<char[]>(rowBytes);
  IplImage from = rgb, to = ycrcb;
  from.imageData = pixels.get();
  from.height = to.height = 1;
  for (int32_t row = rgb.height; row-- > 0 && !LibraryFailed();) {
    std::memcpy(from.imageData, rgb.imageData + ptrdiff_t{row} * rgb.widthStep, rowBytes);
    if (toStudioRange) CompressToStudioRange(from);
    to.imageData = ycrcb.imageData + ptrdiff_t{row} * ycrcb.widthStep;
    iplRGB2YCrCb(&from, &to);
  }
}

/// Counts the pixels of `image`, which stay where they were decoded; a line on the console says
/// when that is more than the account has.
bool CountOrReport(PanZoomState& state, IplImage* image) {
  CountImageData(state, image);
  if (!LibraryFailed()) return true;
  hfxGlobal::ConsolePrintf("PanZoom HFX: Unable to allocate memory for image.\n");
  return false;
}

IplImage* NewHeader(int32_t channels, const char* model, const char* sequence, int32_t align,
                    PixelSize size) {
  return iplCreateImageHeader(channels, 0, IPL_DEPTH_8U, model, sequence, IPL_DATA_ORDER_PIXEL,
                              IPL_ORIGIN_TL, align, size.width, size.height, nullptr, nullptr,
                              nullptr, nullptr);
}

/// Decodes into memory of the image library's, without a copy in between. False when that fails.
bool Decode(PanZoomState& state, OpenStill& still, const StillRect& bounds, IplImage* target) {
  // This failure is not reported on the console a second time.
  if (LibraryFailed()) return false;
  AllocateImageData(state, target);
  if (LibraryFailed()) return false;
  if (target->imageData == nullptr) throw kOutOfMemory;
  return still.DrawAndClose(bounds, *target) == noErr;
}

bool Load(PanZoomState& state, bool interactive) {
  SaveNetworkForm(state);
  OpenStill still;
  if (!OpenImageFile(state, interactive, still)) return false;
  StillRect bounds = {};
  if (still.GetBounds(&bounds) != noErr) return false;
  const PixelSize size = {bounds.right - bounds.left, bounds.bottom - bounds.top};

  ImagePtr decoded(NewHeader(4, "RGBA", "BGRA", IPL_ALIGN_DWORD, size));
  if (!Decode(state, still, bounds, decoded.get())) return false;

  // The picture stays where it is decoded, which spares memory and time: the other two images of a
  // load are counted, and may be refused, but have no memory of their own.
  const IplImage rows = *decoded;
  ImagePtr converted(NewHeader(3, "YCr", "YCr", IPL_ALIGN_QWORD, size));
  if (!CountOrReport(state, converted.get())) return false;
  ExchangePixels(*decoded, *converted);
  decoded.reset();  // before the next is counted: two full-size images at a time, never three

  ImagePtr cached(NewCachedImageHeader(size.width, size.height));
  if (!CountOrReport(state, cached.get())) return false;
  ExchangePixels(*converted, *cached);
  converted.reset();
  ConvertInPlace(rows, *cached, state.settings.levels == kLevelsRGB);
  if (LibraryFailed()) return false;

  state.picture.workImages[0] = std::move(cached);
  state.picture.imageWidth = static_cast<uint32_t>(size.width);
  state.picture.imageHeight = static_cast<uint32_t>(size.height);
  return true;
}

}  // namespace

void SaveImagePath(PanZoomState& state) {
  const PathRecord record(state.picture.imagePath);
  state.SetInstanceData(record.text, kPathRecordSize);
  state.SetInstanceDataModified(true);
}

bool LoadImage(PanZoomState& state, bool interactive) {
  const StatusReset resetOnReturn;
  try {
    return Load(state, interactive);
  } catch (...) {
    return false;
  }
}

bool ReloadImage(PanZoomState& state, bool interactive) {
  ReleaseWorkImages(state);
  const bool loaded = LoadImage(state, interactive);
  ReduceToVideoResolution(state);
  EnforceCacheBudget(state);
  return loaded;
}

}  // namespace kelto
