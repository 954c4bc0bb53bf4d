#include "plugin/update_params.h"

#include <algorithm>
#include <cstring>

#include "catalogue/parameters.h"
#include "image/cache.h"
#include "keyframes/motion_keys.h"

namespace kelto {
namespace {

/// The first active key, or null.
const hfxParamKey* ActiveKey(const hfxParameter& parameter) {
  for (int32_t i = 0; i < parameter.GetNumKeys(); ++i) {
    const hfxParamKey* key = parameter.GetKey(i);
    if (key->IsActive()) return key;
  }
  return nullptr;
}

/// Gives every key of a list or switch the active key's value. Keys of which none is active fall
/// back to the first entry, as saved projects expect.
template <typename Parameter>
void HoldConstant(Parameter& parameter) {
  const hfxParamKey* active = ActiveKey(parameter);
  using Value = decltype(parameter.GetValue(0.0));
  const Value reference = active ? parameter.GetValue(active->GetTime()) : Value{};
  for (int32_t i = 0; i < parameter.GetNumKeys(); ++i) {
    const double time = parameter.GetKey(i)->GetTime();
    if (parameter.GetValue(time) != reference) parameter.SetValue(time, reference);
  }
}

void HoldConstant(hfxPColorRGB& parameter) {
  const hfxParamKey* active = ActiveKey(parameter);
  if (!active) return;
  double reference[3];
  parameter.GetValue(active->GetTime(), reference);
  for (int32_t i = 0; i < parameter.GetNumKeys(); ++i) {
    const double time = parameter.GetKey(i)->GetTime();
    double rgb[3];
    parameter.GetValue(time, rgb);
    if (!std::equal(rgb, rgb + 3, reference)) parameter.SetValue(time, reference);
  }
}

template <typename Parameter>
void HoldConstant(const PanZoomState& state, const char* key) {
  if (auto* parameter = dynamic_cast<Parameter*>(state.FindParameter(key)))
    HoldConstant(*parameter);
}

/// A run of constant speed needs both sides of its keys Constant: an in key that is set to
/// Constant, or taken from it, takes its out key along.
void CoupleVelocities(const PanZoomState& state) {
  const hfxParameter* ins = state.FindParameter(key::kInVelocity);
  const hfxParameter* outs = state.FindParameter(key::kOutVelocity);
  if (!ins || !outs) return;
  for (int32_t i = 0; i < ins->GetNumKeys(); ++i) {
    hfxParamKey* out = outs->GetKey(i);
    if (!ins->GetKey(i)->IsActive() || !out) continue;
    int32_t inValue, outValue;
    std::memcpy(&inValue, ins->GetKey(i)->GetValue(), sizeof inValue);
    std::memcpy(&outValue, out->GetValue(), sizeof outValue);
    if ((inValue == kVelocityConstant) != (outValue == kVelocityConstant)) {
      out->SetValue(&inValue, sizeof inValue);
    }
  }
}

void CommandEveryInstance(int32_t command) {
  for (PanZoomState* instance : InstanceRegistry()) {
    instance->settings.cacheMode = command;
    ApplyCacheCommand(*instance, false);
  }
}

}  // namespace

bool ApplyCacheCommand(PanZoomState& state, bool read) {
  auto* cache = dynamic_cast<hfxPList*>(state.FindParameter(key::kCache));
  if (read && cache) {
    if (const hfxParamKey* active = ActiveKey(*cache)) {
      state.settings.cacheMode = cache->GetValue(active->GetTime());
    }
  }
  if (state.settings.cacheMode == state.picture.appliedCacheMode) return true;
  const int32_t command = state.settings.cacheMode;
  if (command >= kCacheVideoResolution && command < kFreeCurrentCache) {
    state.picture.appliedCacheMode = command;
    ReleaseWorkImages(state);
  } else if (command == kFreeCurrentCache) {
    ReleaseWorkImages(state);
    state.settings.cacheMode = kCacheImageResolution;
  } else if (command >= kCacheAllFirst && command <= kFreeAllCaches) {
    CommandEveryInstance(command - kCacheAllFirst);
  }
  for (int32_t i = 0; cache && i < cache->GetNumKeys(); ++i) {
    cache->SetValue(cache->GetKey(i)->GetTime(), state.settings.cacheMode);
  }
  state.picture.appliedCacheMode = state.settings.cacheMode;
  return true;
}

bool UpdateParams(hfxInstance_v1* instance) {
  auto& state = *static_cast<PanZoomState*>(instance);
  HoldConstant<hfxPList>(state, key::kDisplay);
  HoldConstant<hfxPBoolean>(state, key::kShowActionSafe);
  HoldConstant<hfxPList>(state, key::kPath);
  HoldConstant<hfxPList>(state, key::kFilter);
  HoldConstant<hfxPBoolean>(state, key::kSquarePixels);
  HoldConstant<hfxPList>(state, key::kLevels);
  HoldConstant<hfxPList>(state, key::kCompositeOver);
  HoldConstant<hfxPColorRGB>(state, key::kBackgroundColor);
  HoldConstant<hfxPBoolean>(state, key::kProgressive);
  ApplyCacheCommand(state, true);
  CoupleVelocities(state);
  state.paramsChanged = true;
  return true;
}

}  // namespace kelto
