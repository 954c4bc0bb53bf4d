#include "host/plan/setting.h"

namespace kelto::host {

const SettingValue* HeldValue(const Setting* setting) {
  if (setting == nullptr) return nullptr;
  if (setting->keys.empty()) return setting->value ? &*setting->value : nullptr;
  if (setting->activeKey < 0) return nullptr;
  return &setting->keys.at(static_cast<size_t>(setting->activeKey)).value;
}

bool SwitchedOn(const Setting* setting, bool usual) {
  const SettingValue* value = HeldValue(setting);
  const bool* on = value != nullptr ? std::get_if<bool>(value) : nullptr;
  if (on != nullptr) return *on;
  const bool noneActive = setting != nullptr && !setting->keys.empty();
  return usual && !noneActive;
}

}  // namespace kelto::host
