// What the host keeps for an instance.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "runtime/hfx/access.h"
#include "runtime/hfx/host.h"

struct HFX_INTERNAL hfxInstance_v1::Impl {
  bool Lists(const hfxParameter* parameter) const;
  /// Takes a parameter that is being deleted off every list.
  void Forget(const hfxParameter& parameter);

  hfx::RenderState state;
  std::function<bool()> abortQuery;
  std::map<int32_t, hfxImage*> inputs, outputs;      ///< by index, no nulls
  std::optional<std::vector<unsigned char>> record;  ///< with the zero byte behind it
  bool recordModified = false;
  std::vector<hfxParameter*> parameters;  ///< owned, in order of creation
  std::vector<hfxParameter*> duplicates;  ///< owned; their keys were taken
};
