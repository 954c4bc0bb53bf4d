// What the effect's parameters are set to, by their keys and texts.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/base/variant.h"

namespace kelto::host {

/// A parameter's value: a switch, a number, a point, a colour (0..1 a channel), or the text of a
/// list's entry.
using SettingValue =
    Variant<bool, double, std::array<double, 2>, std::array<double, 3>, std::string>;

/// A value at a time, 0..1 over the film.
struct SettingKey {
  double time = 0.0;
  SettingValue value;
  bool operator==(const SettingKey&) const = default;
};

/// One of the effect's parameters, by its key such as "size".
struct Setting {
  std::string parameter;
  /// What holds while there are no keys; none: what the effect begins with.
  std::optional<SettingValue> value;
  std::vector<SettingKey> keys;  ///< in order of time
  int32_t activeKey = -1;        ///< index of the key being edited, -1 for none
  bool operator==(const Setting&) const = default;
};

/// The value that the effect holds a constant parameter to: its active key's where it has keys.
/// Null for what it begins with, or, with keys of which none is active, a list's first entry and
/// a switch that is off. `setting` may be null.
const SettingValue* HeldValue(const Setting* setting);

/// Whether a switch is on; `usual` is what the effect begins with. `setting` may be null.
bool SwitchedOn(const Setting* setting, bool usual);

}  // namespace kelto::host
