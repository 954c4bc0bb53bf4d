// Values of parameters as the host reads and writes them, and the time of a frame.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "runtime/hfx/parameter.h"

namespace hfx {

ParamKind KindOf(const hfxParameter& parameter) { return hfxHostAccess::Of(parameter).kind; }

hfxPGroup* GroupOf(const hfxParameter& parameter) { return hfxHostAccess::Of(parameter).group; }

int32_t ValueSizeOf(const hfxParameter& parameter) { return hfxHostAccess::Of(parameter).size; }

bool DefaultValueOf(const hfxParameter& parameter, void* result, int32_t size) {
  const auto& impl = hfxHostAccess::Of(parameter);
  if (result == nullptr || !impl.HasValueOfSize(size)) return false;
  std::memcpy(result, impl.defaultValue.bytes, static_cast<size_t>(size));
  return true;
}

bool BoundValueOf(const hfxParameter& parameter, void* result, int32_t size) {
  const auto& impl = hfxHostAccess::Of(parameter);
  if (result == nullptr || !impl.HasValueOfSize(size)) return false;
  std::memcpy(result, impl.field, static_cast<size_t>(size));
  return true;
}

bool SetBoundValue(hfxParameter& parameter, const void* value, int32_t size) {
  const auto& impl = hfxHostAccess::Of(parameter);
  if (value == nullptr || !impl.HasValueOfSize(size)) return false;
  std::memmove(impl.field, value, static_cast<size_t>(size));
  return true;
}

bool ValueAt(hfxParameter& parameter, double time, void* result, int32_t size) {
  const auto& impl = hfxHostAccess::Of(parameter);
  if (result == nullptr || !impl.HasValueOfSize(size) || std::isnan(time)) return false;
  // An interpolator may scribble before it declines or throws; `result` takes the outcome only.
  RawValue value;
  if (impl.interpolator == nullptr ||
      !impl.interpolator(&parameter, time, value.bytes, size, /*reserved=*/0)) {
    impl.Evaluate(time, value.bytes);
  }
  std::memcpy(result, value.bytes, static_cast<size_t>(size));
  return true;
}

void WriteBoundFields(hfxInstance_v1& instance, double time) {
  for (hfxParameter* parameter : ParametersOf(instance)) {
    if (parameter->GetNumKeys() == 0) continue;
    RawValue value;
    const int32_t size = ValueSizeOf(*parameter);
    if (ValueAt(*parameter, time, value.bytes, size)) {
      SetBoundValue(*parameter, value.bytes, size);
    }
  }
}

double FrameTime(const RenderState& state) {
  if (state.totalFrames <= 1) return 0.0;
  const bool secondField = state.field == 1 && state.videoType != hfxVideoTypeProgressive;
  const double frame = state.currentFrame + (secondField ? 0.5 : 0.0);
  return std::clamp(frame / (state.totalFrames - 1), 0.0, 1.0);
}

}  // namespace hfx
