// Editing keys: the host's checks around what hfxParameter::Impl does.
#include <cmath>

#include "runtime/hfx/parameter.h"

namespace hfx {

int32_t SetKey(hfxParameter& parameter, double time, const void* value, int32_t size) {
  auto& impl = hfxHostAccess::Of(parameter);
  if (!std::isfinite(time) || value == nullptr || !impl.HasValueOfSize(size)) return -1;
  return impl.SetKey(time, value);
}

int32_t MoveKey(hfxParameter& parameter, int32_t index, double time) {
  if (!std::isfinite(time) || parameter.GetKey(index) == nullptr) return -1;
  return hfxHostAccess::Of(parameter).MoveKey(index, time);
}

bool RemoveKey(hfxParameter& parameter, int32_t index) {
  if (parameter.GetKey(index) == nullptr) return false;
  auto& keys = hfxHostAccess::Of(parameter).keys;
  keys.erase(keys.begin() + index);
  return true;
}

void RemoveAllKeys(hfxParameter& parameter) { hfxHostAccess::Of(parameter).keys.clear(); }

void SetActiveKey(hfxParameter& parameter, int32_t index) {
  hfxHostAccess::Of(parameter).SetActiveKey(index);
}

int32_t ActiveKeyOf(const hfxParameter& parameter) {
  for (int32_t index = 0; index < parameter.GetNumKeys(); ++index) {
    if (parameter.GetKey(index)->IsActive()) return index;
  }
  return -1;
}

}  // namespace hfx
