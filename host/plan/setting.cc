#include "host/plan/setting.h"

namespace kelto::host {

const SettingValue* HeldValue(const Setting* setting) {
  if (setting == nullptr) return nullptr;
  if (setting->keys.empty()) return setting->value ? &*setting->value : nullptr;
  if (setting->activeKey < 0) return nullptr;
  return &setting->keys.at(static_cast<size_t>(setting->activeKey)).value;
}

}  // namespace kelto::host
