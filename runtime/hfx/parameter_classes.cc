// The parameter classes: what each adds to the base, and its typed value.
#include "runtime/hfx/parameter.h"

using hfx::ParamKind;

hfxPGroup* hfxPGroup::New(const char* displayName, const char* key, int32_t flag) {
  return new hfxPGroup(displayName, key, flag);
}

hfxPGroup::hfxPGroup(const char* displayName, const char* key, int32_t flag)
    : hfxParameter(displayName, key, nullptr, 0), flag_(flag) {
  hfxHostAccess::Of(*this).SetKind(ParamKind::Group);
}

hfxPGroup::~hfxPGroup() = default;

hfxPList* hfxPList::New(const char* displayName, const char* key, void* field, int32_t size,
                        const char* const* entries, int32_t listType) {
  return new hfxPList(displayName, key, field, size, entries, listType);
}

hfxPList::hfxPList(const char* displayName, const char* key, void* field, int32_t size,
                   const char* const* entries, int32_t listType)
    : hfxParameter(displayName, key, field, size), entries_(entries), listType_(listType) {
  hfxHostAccess::Of(*this).SetKind(ParamKind::List);
}

hfxPList::~hfxPList() = default;

int32_t hfxPList::GetValue(double time) const {
  int32_t value = 0;
  hfxHostAccess::Of(*this).Evaluate(time, &value);
  return value;
}

void hfxPList::SetValue(double time, int32_t value) {
  hfxHostAccess::Of(*this).SetValueAt(time, &value);
}

int32_t hfxPList::GetNumEntries() const {
  int32_t count = 0;
  while (entries_ != nullptr && entries_[count] != nullptr) ++count;
  return count;
}

const char* hfxPList::GetEntry(int32_t index) const {
  return index >= 0 && index < GetNumEntries() ? entries_[index] : nullptr;
}

hfxPBoolean* hfxPBoolean::New(const char* displayName, const char* key, void* field, int32_t size) {
  return new hfxPBoolean(displayName, key, field, size);
}

hfxPBoolean::hfxPBoolean(const char* displayName, const char* key, void* field, int32_t size)
    : hfxParameter(displayName, key, field, size) {
  hfxHostAccess::Of(*this).SetKind(ParamKind::Boolean);
}

hfxPBoolean::~hfxPBoolean() = default;

bool hfxPBoolean::GetValue(double time) const {
  uint8_t value = 0;
  hfxHostAccess::Of(*this).Evaluate(time, &value);
  return value != 0;
}

void hfxPBoolean::SetValue(double time, bool value) {
  const uint8_t byte = value ? 1 : 0;
  hfxHostAccess::Of(*this).SetValueAt(time, &byte);
}

hfxPNumber* hfxPNumber::New(const char* displayName, const char* key, void* field, int32_t size,
                            double lower, double upper, double step, int32_t numberType,
                            int32_t flag) {
  return new hfxPNumber(displayName, key, field, size, lower, upper, step, numberType, flag);
}

hfxPNumber::hfxPNumber(const char* displayName, const char* key, void* field, int32_t size,
                       double lower, double upper, double step, int32_t numberType, int32_t flag)
    : hfxParameter(displayName, key, field, size),
      lower_(lower),
      upper_(upper),
      step_(step),
      numberType_(numberType),
      flag_(flag) {
  hfxHostAccess::Of(*this).SetKind(ParamKind::Number);
}

hfxPNumber::~hfxPNumber() = default;

hfxPPoint2D* hfxPPoint2D::New(const char* displayName, const char* key, void* field, int32_t size) {
  return new hfxPPoint2D(displayName, key, field, size);
}

hfxPPoint2D::hfxPPoint2D(const char* displayName, const char* key, void* field, int32_t size)
    : hfxParameter(displayName, key, field, size) {
  hfxHostAccess::Of(*this).SetKind(ParamKind::Point2D);
}

hfxPPoint2D::~hfxPPoint2D() = default;

hfxPColorRGB* hfxPColorRGB::New(const char* displayName, const char* key, void* field,
                                int32_t size) {
  return new hfxPColorRGB(displayName, key, field, size);
}

hfxPColorRGB::hfxPColorRGB(const char* displayName, const char* key, void* field, int32_t size)
    : hfxParameter(displayName, key, field, size) {
  hfxHostAccess::Of(*this).SetKind(ParamKind::ColorRGB);
}

hfxPColorRGB::~hfxPColorRGB() = default;

void hfxPColorRGB::GetValue(double time, double rgb[3]) const {
  if (rgb != nullptr) hfxHostAccess::Of(*this).Evaluate(time, rgb);
}

void hfxPColorRGB::SetValue(double time, const double rgb[3]) {
  if (rgb != nullptr) hfxHostAccess::Of(*this).SetValueAt(time, rgb);
}
