// The functions that a host of the open effects interface looks up.
#include "adapters/openfx/actions.h"

#define KELTO_OPENFX_EXPORT extern "C" __attribute__((visibility("default")))

KELTO_OPENFX_EXPORT int OfxGetNumberOfPlugins() { return 1; }

KELTO_OPENFX_EXPORT kelto::ofx::Plugin* OfxGetPlugin(int number) {
  return number == 0 ? &kelto::openfx::ThePlugin() : nullptr;
}

// Some hosts introduce themselves before they ask for plug-ins.
KELTO_OPENFX_EXPORT kelto::ofx::Status OfxSetHost(const kelto::ofx::Host*) {
  return kelto::ofx::kOk;
}
