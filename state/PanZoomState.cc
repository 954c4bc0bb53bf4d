#include "state/PanZoomState.h"

#include <algorithm>
#include <cstring>

namespace kelto {

std::vector<PanZoomState*>& InstanceRegistry() {
  static std::vector<PanZoomState*> registry;
  return registry;
}

PanZoomState::PanZoomState() { InstanceRegistry().push_back(this); }

PanZoomState::~PanZoomState() {
  auto& registry = InstanceRegistry();
  const auto self = std::find(registry.begin(), registry.end(), this);
  if (self != registry.end()) registry.erase(self);
}

std::string PathOfRecord(const void* record) {
  const char* text = static_cast<const char*>(record);
  return std::string(text, strnlen(text, kPathRecordSize));
}

}  // namespace kelto
