// An instance with one parameter of each class, as tests edit it.
#pragma once

#include <cstring>
#include <vector>

#include "platform/hfx.h"
#include "runtime/hfx/host.h"

namespace kelto {

struct EditableInstance : hfxInstance_v1 {
  EditableInstance() {
    AddParameter(group, nullptr);
    AddParameter(list, nullptr);
    AddParameter(flag, group);
    AddParameter(number, group);
    AddParameter(point, group);
    AddParameter(color, group);
  }

  static constexpr const char* kEntries[] = {"Zero", "One", "Two", nullptr};

  int32_t listField = 1;
  bool flagField = true;
  double numberField = 2.5;
  double pointField[2] = {0.25, -0.5};
  double colorField[3] = {0.1, 0.2, 0.3};

  hfxPGroup* group = hfxPGroup::New("Group", "group", 1);
  hfxPList* list = hfxPList::New("", "list", &listField, 4, kEntries, 1);
  hfxPBoolean* flag = hfxPBoolean::New("Flag", "flag", &flagField, 1);
  hfxPNumber* number = hfxPNumber::New("Number", "number", &numberField, 8, 0.1, 20.0, 0.01, 3, 1);
  hfxPPoint2D* point = hfxPPoint2D::New("Point", "point", pointField, 16);
  hfxPColorRGB* color = hfxPColorRGB::New("Color", "color", colorField, 24);
};

inline int32_t SetNumberKey(hfxParameter& parameter, double time, double value) {
  return hfx::SetKey(parameter, time, &value, sizeof value);
}

inline double KeyNumber(const hfxParameter& parameter, int32_t index) {
  double value;
  std::memcpy(&value, parameter.GetKey(index)->GetValue(), sizeof value);
  return value;
}

inline std::vector<double> KeyTimes(const hfxParameter& parameter) {
  std::vector<double> times;
  times.reserve(static_cast<size_t>(parameter.GetNumKeys()));
  for (int32_t i = 0; i < parameter.GetNumKeys(); ++i) {
    times.push_back(parameter.GetKey(i)->GetTime());
  }
  return times;
}

inline double NumberAt(hfxParameter& parameter, double time) {
  double value = -999.0;
  return hfx::ValueAt(parameter, time, &value, sizeof value) ? value : -999.0;
}

}  // namespace kelto
