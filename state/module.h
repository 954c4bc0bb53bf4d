// Variables of the loaded library, one copy per process. The entry points write them.
#pragma once

#include "platform/hfx.h"
#include "platform/win32.h"

namespace kelto {

struct ModuleState {
  HINSTANCE handle = nullptr;                ///< owns the file dialogs
  hfxHostStateCallback hostState = nullptr;  ///< asked when an instance begins a render
  void* attributeBlock = nullptr;            ///< remembered, never read
};

ModuleState& Module();

}  // namespace kelto
