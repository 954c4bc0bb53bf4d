#include "runtime/hfx/parameter.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "runtime/hfx/instance.h"

namespace hfx {

int32_t ValueSize(ParamKind kind) {
  switch (kind) {
    case ParamKind::Group:
      return 0;
    case ParamKind::List:
      return 4;
    case ParamKind::Boolean:
      return 1;
    case ParamKind::Number:
      return 8;
    case ParamKind::Point2D:
      return 16;
    case ParamKind::ColorRGB:
      return 24;
  }
  return 0;
}

namespace {

bool IsHeldBetweenKeys(ParamKind kind) {
  return kind == ParamKind::List || kind == ParamKind::Boolean;
}

/// Linear interpolation of `size` bytes of doubles, exact at both ends and between equal values.
void Interpolate(const void* before, const void* after, double fraction, int32_t size,
                 void* result) {
  for (int32_t offset = 0; offset < size; offset += static_cast<int32_t>(sizeof(double))) {
    double a, b;
    std::memcpy(&a, static_cast<const unsigned char*>(before) + offset, sizeof a);
    std::memcpy(&b, static_cast<const unsigned char*>(after) + offset, sizeof b);
    const double value = std::lerp(a, b, fraction);
    std::memcpy(static_cast<unsigned char*>(result) + offset, &value, sizeof value);
  }
}

}  // namespace
}  // namespace hfx

double hfxParamKey::GetTime() const { return time_; }

bool hfxParamKey::IsActive() const { return active_; }

const void* hfxParamKey::GetValue() const { return value_; }

bool hfxParamKey::SetValue(const void* value, int32_t size) {
  if (value == nullptr || size < 0 || size > size_) return false;
  std::memmove(value_, value, static_cast<size_t>(size));
  return true;
}

hfxParameter::Impl::Impl(const char* displayNameText, const char* keyText, void* boundField,
                         int32_t fieldSize)
    : displayName(hfx::TextOrEmpty(displayNameText)),
      key(hfx::TextOrEmpty(keyText)),
      field(boundField),
      size(fieldSize) {}

void hfxParameter::Impl::SetKind(hfx::ParamKind newKind) {
  kind = newKind;
  const int32_t valueSize = hfx::ValueSize(kind);
  if (valueSize > 0 && (field == nullptr || size != valueSize)) {
    hfxGlobal::ConsolePrintf("hfx: parameter \"%s\" is bound to %s, not to %d bytes; unbound\n",
                             key.c_str(), field == nullptr ? "nothing" : "a field of another size",
                             static_cast<int>(valueSize));
    field = ownValue.bytes;
  }
  size = valueSize;
  if (size > 0) std::memcpy(defaultValue.bytes, field, static_cast<size_t>(size));
}

int32_t hfxParameter::Impl::FirstKeyFrom(double time) const {
  const auto found = std::lower_bound(
      keys.begin(), keys.end(), time,
      [](const hfx::OwnedKey& each, double wanted) { return each->time_ < wanted; });
  return static_cast<int32_t>(found - keys.begin());
}

int32_t hfxParameter::Impl::KeyIndex(double time) const {
  const int32_t index = FirstKeyFrom(time);
  const bool found = index < static_cast<int32_t>(keys.size()) && keys[index]->time_ == time;
  return found ? index : -1;
}

int32_t hfxParameter::Impl::SetKey(double time, const void* value) {
  int32_t index = KeyIndex(time);
  if (index < 0) {
    hfx::OwnedKey added(new hfxParamKey);
    added->time_ = time;
    added->size_ = size;
    index = FirstKeyFrom(time);
    keys.insert(keys.begin() + index, std::move(added));
  }
  keys[index]->SetValue(value, size);
  return index;
}

int32_t hfxParameter::Impl::MoveKey(int32_t index, double time) {
  const int32_t there = KeyIndex(time);
  if (there >= 0) return there == index ? index : -1;
  const int32_t before = FirstKeyFrom(time);
  keys[index]->time_ = time;
  const auto begin = keys.begin();
  if (before > index) {
    std::rotate(begin + index, begin + index + 1, begin + before);
    return before - 1;
  }
  std::rotate(begin + before, begin + index, begin + index + 1);
  return before;
}

void hfxParameter::Impl::SetActiveKey(int32_t index) {
  for (int32_t each = 0; each < static_cast<int32_t>(keys.size()); ++each) {
    keys[each]->active_ = each == index;
  }
}

void hfxParameter::Impl::Evaluate(double time, void* result) const {
  const auto copy = [&](const void* value) {
    std::memcpy(result, value, static_cast<size_t>(size));
  };
  if (keys.empty()) return copy(field);

  const int32_t next = FirstKeyFrom(time);
  const int32_t count = static_cast<int32_t>(keys.size());
  if (next < count && keys[next]->time_ == time) return copy(keys[next]->value_);
  if (next == 0) return copy(keys.front()->value_);
  const hfxParamKey& before = *keys[next - 1];
  if (next == count || hfx::IsHeldBetweenKeys(kind)) return copy(before.value_);

  const hfxParamKey& after = *keys[next];
  const double fraction = (time - before.time_) / (after.time_ - before.time_);
  hfx::Interpolate(before.value_, after.value_, fraction, size, result);
}

void hfxParameter::Impl::SetValueAt(double time, const void* value) {
  if (keys.empty()) {
    std::memcpy(field, value, static_cast<size_t>(size));
  } else if (const int32_t index = KeyIndex(time); index >= 0) {
    keys[index]->SetValue(value, size);
  }
}

void hfxParameter::Impl::CopyValueFrom(const Impl& from) {
  if (size == 0) return;
  std::vector<hfx::OwnedKey> copies;
  copies.reserve(from.keys.size());
  for (const hfx::OwnedKey& each : from.keys) copies.emplace_back(new hfxParamKey(*each));
  keys = std::move(copies);
  std::memcpy(field, from.field, static_cast<size_t>(size));
}

hfxParameter::hfxParameter(const char* displayName, const char* key, void* field, int32_t size)
    : impl_(new Impl(displayName, key, field, size)) {}

hfxParameter::~hfxParameter() {
  if (impl_->owner != nullptr) hfxHostAccess::Of(*impl_->owner).Forget(*this);
  delete impl_;
}

const char* hfxParameter::GetKeyName() const { return impl_->key.c_str(); }

const char* hfxParameter::GetDisplayName() const { return impl_->displayName.c_str(); }

int32_t hfxParameter::GetNumKeys() const { return static_cast<int32_t>(impl_->keys.size()); }

hfxParamKey* hfxParameter::GetKey(int32_t index) const {
  return index >= 0 && index < GetNumKeys() ? impl_->keys[index].get() : nullptr;
}

int32_t hfxParameter::GetKeyIndex(double time) const { return impl_->KeyIndex(time); }

void hfxParameter::SetInterpolator(hfxInterpolator interpolator) {
  impl_->interpolator = interpolator;
}

void hfxParameter::SetUserData(void* data) { impl_->userData = data; }

void* hfxParameter::GetUserData() const { return impl_->userData; }
