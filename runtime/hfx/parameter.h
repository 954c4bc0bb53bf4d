// What a parameter holds: names, bound field, keys and how its value follows from them.
#pragma once

#include <string>
#include <vector>

#include "runtime/hfx/access.h"
#include "runtime/hfx/host.h"

namespace hfx {

/// Bytes of the largest raw value, a colour's.
inline constexpr int32_t kLargestValue = 24;

/// Room for any raw value, aligned as interpolators expect it.
struct RawValue {
  alignas(8) unsigned char bytes[kLargestValue] = {};
};

/// Bytes of a raw value, 0 for groups.
int32_t ValueSize(ParamKind kind);

}  // namespace hfx

struct HFX_INTERNAL hfxParameter::Impl {
  Impl(const char* displayNameText, const char* keyText, void* boundField, int32_t fieldSize);

  /// Settles the class; from here on the parameter has a value. Without a usable field it is bound
  /// to `ownValue`.
  void SetKind(hfx::ParamKind newKind);

  bool HasValueOfSize(int32_t wanted) const { return size > 0 && wanted == size; }
  /// Position of the first key at `time` or later.
  int32_t FirstKeyFrom(double time) const;
  int32_t KeyIndex(double time) const;
  /// Adds or overwrites the key at `time` (finite) and returns its index.
  int32_t SetKey(double time, const void* value);
  int32_t MoveKey(int32_t index, double time);
  void SetActiveKey(int32_t index);

  /// The value at `time` by the keys, or the field's without keys; `result` takes `size` bytes.
  void Evaluate(double time, void* result) const;
  /// Sets the key at exactly `time`, or the field when there are no keys.
  void SetValueAt(double time, const void* value);
  /// Takes over value and keys of a parameter of the same kind.
  void CopyValueFrom(const Impl& from);

  std::string displayName, key;
  hfx::ParamKind kind = hfx::ParamKind::Group;
  void* field;
  int32_t size;  ///< of the field and of each key's value; 0 without a value
  hfx::RawValue ownValue, defaultValue;
  std::vector<hfx::OwnedKey> keys;  ///< strictly ordered by time
  hfxInterpolator interpolator = nullptr;
  void* userData = nullptr;
  hfxInstance_v1* owner = nullptr;
  hfxPGroup* group = nullptr;
};
