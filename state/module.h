// Variables of the loaded library, one copy per process. All of them have their one owner here.
#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "platform/hfx.h"
#include "platform/win32.h"
#include "state/pool.h"

namespace kelto {

struct ModuleState {
  // What the system and the host have handed over, null before that. All of it stays theirs;
  // the entry points write it.
  HINSTANCE handle = nullptr;                ///< owns the file dialogs
  hfxHostStateCallback hostState = nullptr;  ///< asked when an instance begins a render
  void* attributeBlock = nullptr;            ///< kept as the interface asks, never read

  CacheBufferPool cachePool;  ///< of all cached images
  /// Pixel bytes that AllocateImageData handed out and ReleaseImage has not yet taken back.
  uint32_t cachedBytes = 0;
  /// Every folder from which an image was opened, in ascending order of bytes. Only grows.
  std::set<std::string> knownFolders;
};

/// The process's one state. Not locked: the host's calls come one at a time.
ModuleState& Module();

}  // namespace kelto
