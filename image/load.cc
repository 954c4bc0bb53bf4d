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

/// Rows of an image as an image of their own, which owns nothing.
IplImage Strip(const IplImage& image, int32_t firstRow, int32_t rows) {
  IplImage strip = image;
  strip.imageData += ptrdiff_t{firstRow} * image.widthStep;
  strip.height = rows;
  return strip;
}

/// The same into pixels of their own, in strips, for the same reason.
void ConvertApart(const IplImage& rgb, const IplImage& ycrcb, bool toStudioRange) {
  constexpr int32_t kStripRows = 8;
  for (int32_t row = 0; row < rgb.height && !LibraryFailed(); row += kStripRows) {
    const int32_t rows = std::min(kStripRows, rgb.height - row);
    const IplImage from = Strip(rgb, row, rows);
    IplImage to = Strip(ycrcb, row, rows);
    if (toStudioRange) CompressToStudioRange(from);
    iplRGB2YCrCb(&from, &to);
  }
}

/// Three bytes a pixel to four; the fourth is not written.
void SpreadPixels(const IplImage& from, const IplImage& to) {
  for (int32_t row = 0; row < from.height; ++row) {
    const char* source = from.imageData + ptrdiff_t{row} * from.widthStep;
    char* dest = to.imageData + ptrdiff_t{row} * to.widthStep;
    for (int32_t column = 0; column < from.width; ++column, source += 3, dest += 4) {
      std::memcpy(dest, source, 3);
    }
  }
}

/// Whether a picture stays where it is decoded, which spares memory and time. What the other images
/// of a load are given takes addresses all the same, of which a 32-bit process has too few: for it,
/// the smaller of the images is kept while the last one is given its own.
constexpr bool kStays = sizeof(void*) > 4;

/// Allocates the pixels of `image`; a line on the console says when memory runs out.
bool AllocateOrReport(PanZoomState& state, IplImage* image) {
  AllocateImageData(state, image);
  if (LibraryFailed()) {
    hfxGlobal::ConsolePrintf("PanZoom HFX: Unable to allocate memory for image.\n");
    return false;
  }
  if (image->imageData == nullptr) throw kOutOfMemory;
  return true;
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

  // Where the picture stays, what the other images are given is counted, and may be refused, but
  // nobody writes there, so that the system provides no memory for it.
  const IplImage rows = *decoded;
  const bool toStudioRange = state.settings.levels == kLevelsRGB;
  ImagePtr converted(NewHeader(3, "YCr", "YCr", IPL_ALIGN_QWORD, size));
  if (!AllocateOrReport(state, converted.get())) return false;
  if (kStays) {
    ExchangePixels(*decoded, *converted);
  } else {
    ConvertApart(*decoded, *converted, toStudioRange);
  }
  if (LibraryFailed()) return false;
  decoded.reset();  // before the next allocation: two full-size images at a time, never three

  ImagePtr cached(NewCachedImageHeader(size.width, size.height));
  if (!AllocateOrReport(state, cached.get())) return false;
  if (kStays) {
    ExchangePixels(*converted, *cached);
    converted.reset();
    ConvertInPlace(rows, *cached, toStudioRange);
  } else {
    SpreadPixels(*converted, *cached);
  }
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
