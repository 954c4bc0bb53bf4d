#include "plugin/choose_image.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "image/cache.h"
#include "image/load.h"
#include "image/network_path.h"
#include "image/paths.h"
#include "platform/win32.h"

namespace kelto {
namespace {

/// True for a path that names nothing: an empty one, or a bare "//:".
bool NamesNothing(const std::string& path) { return path.empty() || path == "//:"; }

/// What follows the terminator goes into the saved record and must be zero; dialogs leave scraps.
void ClearBehindText(std::vector<char>& buffer) {
  buffer.back() = 0;
  std::fill(std::find(buffer.begin(), buffer.end(), 0), buffer.end(), 0);
}

}  // namespace

bool ChooseImageOf(PanZoomState& state) {
  state.render.hostState = -1;
  std::vector<char> buffer(kPathRecordSize);
  std::memcpy(buffer.data(), state.picture.imagePath.data(),
              std::min(state.picture.imagePath.size(), buffer.size() - 1));
  const bool fresh = NamesNothing(buffer.data()) || state.picture.workImages[0];
  const bool picked = fresh ? ChooseImageFile(buffer.data(), kPathRecordSize, nullptr)
                            : LocateImageFile(buffer.data(), kPathRecordSize);
  if (!picked) return false;
  ClearBehindText(buffer);
  ResolveNetworkPath(buffer.data(), buffer.data(), kPathRecordSize);
  state.picture.imagePath = buffer.data();

  ReleaseWorkImages(state);
  const bool loaded = LoadImage(state, true);
  ReduceToVideoResolution(state);
  EnforceCacheBudget(state);
  if (!loaded) {
    win32().MessageBoxA(nullptr, "Not enough memory to load image.", "Kelto Pan & Zoom Error",
                        MB_OK);
    return true;
  }
  state.SetInstanceData(buffer.data(), kPathRecordSize);
  state.SetInstanceDataModified(true);
  state.picture.loadFailed = false;
  return true;
}

}  // namespace kelto
