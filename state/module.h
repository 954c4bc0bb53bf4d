// Variables of the loaded library, one copy per process. The entry points write them.
#pragma once

#include "platform/hfx.h"
#include "platform/win32.h"

namespace kelto {

/// What the system and the host have told the library, null before that. All of it stays theirs.
struct ModuleState {
  HINSTANCE handle = nullptr;                ///< owns the file dialogs
  hfxHostStateCallback hostState = nullptr;  ///< asked when an instance begins a render
  void* attributeBlock = nullptr;            ///< remembered, never read
};

/// The process's one state. Not locked: the host's calls come one at a time.
ModuleState& Module();

}  // namespace kelto
