// What the host calls by name.
#include <new>

#include "platform/hfx.h"
#include "platform/ipl.h"
#include "plugin/PanZoomModel.h"
#include "state/module.h"

#if defined(_WIN32)
// The module's definition file names the exports.
#define KELTO_ENTRY extern "C"
#else
#define KELTO_ENTRY extern "C" __attribute__((visibility("default")))
#endif

namespace {

constexpr uint16_t kOnlyModel = 1;
constexpr uint16_t kAttributeVersion = 1;

// Model attributes, named by what is done with them.
constexpr int32_t kAttributeAnswered = 12;
constexpr int32_t kAttributeRemembered = 15;

constexpr int32_t kSetHostState = 0;

}  // namespace

KELTO_ENTRY int32_t hfxStartUp_v1() {
  iplSetErrMode(IPL_ErrModeSilent);
  return 1;
}

KELTO_ENTRY void hfxShutDown_v1() {}

KELTO_ENTRY int32_t hfxNumModels_v1() { return 1; }

KELTO_ENTRY hfxModel_v1* hfxNewModel_v1(uint16_t number) {
  if (number != kOnlyModel) return nullptr;
  try {
    return new kelto::PanZoomModel;
  } catch (...) {
    return nullptr;
  }
}

KELTO_ENTRY void* hfxNewOverlay_v1() { return nullptr; }

KELTO_ENTRY int32_t hfxGetModelAttributes_v1ext(uint16_t version, int32_t attribute, void* result) {
  if (!result || version != kAttributeVersion) return 0;
  if (attribute == kAttributeAnswered) {
    *static_cast<uint8_t*>(result) = 1;
    return 1;
  }
  if (attribute == kAttributeRemembered) kelto::Module().attributeBlock = result;
  return 0;
}

KELTO_ENTRY int32_t hfxSetAttribute(int32_t, int32_t attribute, intptr_t value, int32_t* result) {
  if (result) *result = 0;
  if (attribute == kSetHostState) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the interface passes the function so
    kelto::Module().hostState = reinterpret_cast<hfxHostStateCallback>(value);
  }
  return 0;
}
