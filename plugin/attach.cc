// Keeps the library's own handle while it is loaded: the file dialogs are owned by it.
#include "state/module.h"

#if defined(_WIN32)

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void*) {
  if (reason == DLL_PROCESS_ATTACH) kelto::Module().handle = module;
  if (reason == DLL_PROCESS_DETACH) kelto::Module().handle = nullptr;
  return TRUE;
}

#else

#include <dlfcn.h>

namespace {

/// The loader's attach and detach calls; the handle is where the library was mapped.
struct Attachment {
  Attachment() {
    Dl_info info = {};
    if (dladdr(&attachment, &info)) kelto::Module().handle = info.dli_fbase;
  }
  ~Attachment() { kelto::Module().handle = nullptr; }
  static Attachment attachment;
};

Attachment Attachment::attachment;

}  // namespace

#endif
