// The effect as the host lists it.
#pragma once

#include "platform/hfx.h"

namespace kelto {

/// Describes the effect, its formats and connections, and makes its instances.
class PanZoomModel : public hfxModel_v1 {
 public:
  bool DescribeEffect() override;
  hfxInstance_v1* CreateInstance() override;
  bool DeclareConnections() override;
  bool QueryCapability(int32_t capability) override;
};

}  // namespace kelto
